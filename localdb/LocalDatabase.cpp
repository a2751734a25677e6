#include "LocalDatabase.h"

#include <utility>

#include "CancelWatch.h"
#include "CursorReader.h"
#include "base/platform/ThreadSlot.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/framework/String.h"
#include "resultset/ResultTable.h"

namespace qv {

namespace {

using result::kFailed;
using result::kSuccess;

struct Failure {
  std::string database;
  std::string text;  // empty if there is none
  bool is_of_opening = false;
};

// The error of this thread.
Failure& LastFailure() { return platform::OfThisThread<Failure>(); }

std::string_view OrEmpty(const char* text) { return text != nullptr ? text : ""; }

int Fail(const char* database, std::string_view text) {
  NoteLocalFailure(database, text);
  return kFailed;
}

void NoteUnknown(const char* database) {
  const Failure& last = LastFailure();
  if (last.is_of_opening && last.database == OrEmpty(database)) return;
  NoteLocalFailure(database, "no connection is open");
}

// Moves to the first result that has columns, if there is one.
bool FindRows(odbc::Statement& statement, odbc::Diagnostics& diagnostics) {
  while (statement.Columns().empty()) {
    const odbc::Step step = statement.NextResult(diagnostics);
    if (step != odbc::Step::kNext) return step == odbc::Step::kEnd;
  }
  return true;
}

// Some databases execute a text only as its results are fetched, and fail only then.
bool Finish(odbc::Statement& statement, odbc::Diagnostics& diagnostics) {
  odbc::Step step = odbc::Step::kNext;
  while (step == odbc::Step::kNext) step = statement.NextResult(diagnostics);
  return step == odbc::Step::kEnd;
}

}  // namespace

void NoteLocalFailure(const char* database, std::string_view text) {
  LastFailure() = {std::string(OrEmpty(database)), std::string(text)};
}

int OdbcLocalDatabase::Open(const char* database, const char* connection) {
  odbc::Diagnostics diagnostics;
  auto entry = std::make_shared<Entry>();
  entry->connection = odbc::Connection::Open(OrEmpty(connection), {}, diagnostics);
  if (entry->connection == nullptr) {
    LastFailure() = {std::string(OrEmpty(database)), odbc::TextOf(diagnostics), true};
    return 0;
  }
  LastFailure() = {};
  // A replaced connection is closed after the lock is released.
  const std::lock_guard lock(mutex_);
  std::swap(entries_[std::string(OrEmpty(database))], entry);
  return 1;
}

int OdbcLocalDatabase::Close(const char* database) {
  std::map<std::string, std::shared_ptr<Entry>, std::less<>>::node_type closed;
  const std::lock_guard lock(mutex_);
  const auto found = entries_.find(OrEmpty(database));
  if (found != entries_.end()) closed = entries_.extract(found);
  return closed.empty() ? 0 : 1;
}

void OdbcLocalDatabase::CloseAll() {
  decltype(entries_) closed;
  const std::lock_guard lock(mutex_);
  entries_.swap(closed);
}

int OdbcLocalDatabase::Select(const CString& sql, CRvoDbRes& result, const char* database) {
  return Run(sql, database, [&](odbc::Statement& statement, odbc::Diagnostics& diagnostics) {
    if (!FindRows(statement, diagnostics)) return false;
    if (statement.Columns().empty()) return true;
    CursorReader reader(statement, files_, diagnostics);
    if (!reader.Read() || !Finish(statement, diagnostics)) return false;
    reader.MoveTo(ResultTable::Of(result));
    return true;
  });
}

int OdbcLocalDatabase::Execute(const CString& sql, const char* database) {
  return Run(sql, database, Finish);
}

std::string OdbcLocalDatabase::LastError() const {
  const Failure& last = LastFailure();
  return last.text.empty() ? std::string() : last.database + ": " + last.text;
}

std::shared_ptr<OdbcLocalDatabase::Entry> OdbcLocalDatabase::Find(std::string_view database) {
  const std::lock_guard lock(mutex_);
  const auto found = entries_.find(database);
  return found != entries_.end() ? found->second : nullptr;
}

int OdbcLocalDatabase::Run(const CString& sql, const char* database, const Work& work) {
  if (sql.IsEmpty()) return Fail(database, "the statement is empty");
  const std::shared_ptr<Entry> entry = Find(OrEmpty(database));
  if (entry == nullptr) {
    NoteUnknown(database);
    return kFailed;
  }
  odbc::Diagnostics diagnostics;
  const auto lock = CancelWatch::Lock(entry->mutex);
  if (!lock) return Fail(database, "cancelled");
  odbc::Statement statement(*entry->connection);
  const CancelWatch watch(statement);
  const bool done = statement.Execute(sql.View(), diagnostics) && work(statement, diagnostics);
  if (!done) return Fail(database, odbc::TextOf(diagnostics));
  LastFailure() = {};
  return kSuccess;
}

}  // namespace qv
