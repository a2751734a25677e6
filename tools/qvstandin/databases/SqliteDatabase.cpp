#include "SqliteDatabase.h"

#include <limits>
#include <string_view>
#include <utility>

#include "base/text/Numbers.h"
#include "tools/qvstandin/sql/ClientSql.h"

namespace qv::standin {

namespace {

Outcome NoStatement() { return {ErrorCode::kSqlFailed, "there is no statement", error::kSyntax}; }

}  // namespace

std::unique_ptr<SqliteDatabase> SqliteDatabase::Open(const std::string& path, WorkLimit& limit,
                                                     std::size_t cell_limit, KeptDatabases* kept) {
  std::unique_ptr<SqliteSession> session = kept != nullptr ? kept->sqlite.Take(path) : nullptr;
  if (session == nullptr) session = SqliteSession::Open(path, cell_limit);
  if (session == nullptr) return nullptr;
  return std::unique_ptr<SqliteDatabase>(new SqliteDatabase(std::move(session), limit, kept));
}

SqliteDatabase::SqliteDatabase(std::unique_ptr<SqliteSession> session, WorkLimit& limit,
                               KeptDatabases* kept)
    : session_(std::move(session)), limit_(limit), kept_(kept) {
  session_->Begin(limit);
}

SqliteDatabase::~SqliteDatabase() {
  if (session_->End() && kept_ != nullptr) kept_->sqlite.Keep(std::move(session_));
}

Outcome SqliteDatabase::Query(const std::string& sql, RowSink& sink) {
  SqliteStatement statement = session_->Take(sql);
  if (statement == nullptr) {
    if (Outcome prepared = PrepareOnly(sql, statement); !prepared.Ok()) return prepared;
  }
  if (sqlite3_stmt_readonly(statement.get()) == 0 || sqlite3_column_count(statement.get()) == 0) {
    return {ErrorCode::kNotPermitted, "a query must only read"};
  }
  if (Outcome delivered = Deliver(statement.get(), sink); !delivered.Ok()) return delivered;
  session_->Keep(sql, std::move(statement));
  return {};
}

Outcome SqliteDatabase::Execute(std::span<const std::string_view> statements,
                                std::int32_t& failed) {
  failed = 0;
  if (Outcome begun = RunTrusted("BEGIN IMMEDIATE"); !begun.Ok()) return begun;
  for (const std::string_view statement : statements) {
    ++failed;
    Outcome outcome = RunAll(statement, {}, nullptr);
    if (!outcome.Ok()) return EndTransaction(std::move(outcome));
  }
  failed = 0;
  return EndTransaction({});
}

Outcome SqliteDatabase::Call(const ProcedureCall& call, RowSink& sink) {
  std::string sql;
  if (Outcome found = ReadProcedure(call.name, sql); !found.Ok()) return found;
  if (Outcome begun = RunTrusted("BEGIN"); !begun.Ok()) return begun;
  return EndTransaction(RunAll(sql, call.arguments, &sink));
}

Outcome SqliteDatabase::PrepareOnly(const std::string& sql, SqliteStatement& statement) {
  const std::string text = WithPlainTableNames(sql, text::kSqlite);
  Rest rest{text.c_str(), text.c_str() + text.size()};
  if (const int code = Prepare(rest, statement); code != SQLITE_OK) return Failure(code);
  if (statement == nullptr) return NoStatement();
  if (HasMore(rest)) return {ErrorCode::kNotPermitted, "a query must be one statement"};
  return {};
}

// Skips blanks, comments and lone semicolons. A NUL ends the text.
int SqliteDatabase::Prepare(Rest& rest, SqliteStatement& statement) {
  statement.reset();
  while (*rest.begin != '\0' && statement == nullptr) {
    // With the NUL counted in, the rest of a long text is not copied for every statement.
    const std::ptrdiff_t length = rest.end - rest.begin + 1;
    if (length > std::numeric_limits<int>::max()) return SQLITE_TOOBIG;
    const int code = session_->Prepare(rest.begin, static_cast<int>(length), statement, rest.begin);
    if (code != SQLITE_OK) return code;
  }
  return SQLITE_OK;
}

// A statement that does not compile counts as well: it may compile after the previous ones have
// run.
bool SqliteDatabase::HasMore(Rest rest) {
  SqliteStatement next;
  return Prepare(rest, next) != SQLITE_OK || next != nullptr;
}

// If there is a sink, it receives the rows of the last statement.
Outcome SqliteDatabase::RunAll(std::string_view sql, Arguments arguments, RowSink* sink) {
  SqliteStatement statement = session_->Take(sql);
  if (statement != nullptr) {
    Outcome outcome = RunOne(statement.get(), arguments, sink);
    if (outcome.Ok()) session_->Keep(sql, std::move(statement));
    return outcome;
  }
  const std::string text = WithPlainTableNames(sql, text::kSqlite);
  Rest rest{text.c_str(), text.c_str() + text.size()};
  for (bool is_first = true, more = true; more; is_first = false) {
    if (const int code = Prepare(rest, statement); code != SQLITE_OK) return Failure(code);
    if (statement == nullptr) return NoStatement();
    more = HasMore(rest);
    Outcome outcome = RunOne(statement.get(), arguments, more ? nullptr : sink);
    if (!outcome.Ok()) return outcome;
    if (is_first && !more) session_->Keep(sql, std::move(statement));
  }
  return {};
}

Outcome SqliteDatabase::RunOne(sqlite3_stmt* statement, Arguments arguments, RowSink* sink) {
  // Short statements end before SQLite calls the progress handler.
  if (limit_.IsOver()) return Failure(SQLITE_INTERRUPT);
  if (Outcome bound = Bind(statement, arguments); !bound.Ok()) return bound;
  return sink != nullptr ? Deliver(statement, *sink) : Step(statement);
}

Outcome SqliteDatabase::Step(sqlite3_stmt* statement) {
  int code = SQLITE_ROW;
  while (code == SQLITE_ROW) code = sqlite3_step(statement);
  return code == SQLITE_DONE ? Outcome() : Failure(code);
}

Outcome SqliteDatabase::Deliver(sqlite3_stmt* statement, RowSink& sink) {
  int code = sqlite3_step(statement);  // the first row tells the kind of an expression
  if (code != SQLITE_ROW && code != SQLITE_DONE) return Failure(code);
  const Outcome lost{ErrorCode::kAnswerLost, "the answer could not be stored"};
  if (!sink.Begin(ColumnsOf(statement, code == SQLITE_ROW))) return lost;
  std::vector<Cell> cells;
  for (; code == SQLITE_ROW; code = sqlite3_step(statement)) {
    ReadCells(statement, cells);
    if (!sink.Row(cells)) return lost;
  }
  return code == SQLITE_DONE ? Outcome() : Failure(code);
}

Outcome SqliteDatabase::Bind(sqlite3_stmt* statement, Arguments arguments) {
  const auto wanted = static_cast<std::size_t>(sqlite3_bind_parameter_count(statement));
  if (wanted > arguments.size()) {
    return {ErrorCode::kSqlFailed, std::to_string(wanted) + " arguments are required",
            error::kSyntax};
  }
  for (std::size_t i = 0; i < wanted; ++i) {
    const int code = BindArgument(statement, static_cast<int>(i + 1), arguments[i]);
    if (code != SQLITE_OK) return Failure(code);
  }
  return {};
}

Outcome SqliteDatabase::ReadProcedure(const std::string& name, std::string& sql) {
  static const std::string text =
      std::string("SELECT sql FROM ") + kProcedureTable + " WHERE name = ?1 COLLATE NOCASE";
  const Outcome unknown{ErrorCode::kNoProcedure, "no procedure " + name};
  SqliteStatement statement = session_->Take(text);
  if (statement == nullptr && !PrepareOnly(text, statement).Ok()) return unknown;
  const int bound = BindArgument(statement.get(), 1, name);
  if (bound != SQLITE_OK) return Failure(bound);
  const int code = sqlite3_step(statement.get());
  if (code == SQLITE_DONE) return unknown;
  if (code != SQLITE_ROW) return Failure(code);
  std::vector<Cell> cells;
  ReadCells(statement.get(), cells);
  const auto* const found = std::get_if<std::string_view>(&cells.front());
  if (found == nullptr) return unknown;
  sql = *found;
  session_->Keep(text, std::move(statement));
  return {};
}

Outcome SqliteDatabase::RunTrusted(const char* sql) {
  const int code = session_->RunTrusted(sql);
  return code == SQLITE_OK ? Outcome() : Failure(code);
}

Outcome SqliteDatabase::EndTransaction(Outcome outcome) {
  sqlite3* const connection = session_->Connection();
  if (outcome.Ok()) outcome = RunTrusted("COMMIT");
  // A statement that failed may have ended the transaction already.
  if (!outcome.Ok() && sqlite3_get_autocommit(connection) == 0) {
    // The limit that ended the work must not interrupt the rollback.
    sqlite3_progress_handler(connection, 0, nullptr, nullptr);
    if (Outcome undone = RunTrusted("ROLLBACK"); !undone.Ok()) outcome.text += "; " + undone.text;
  }
  return outcome;
}

Outcome SqliteDatabase::Failure(int code) {
  session_->Spoil();
  return SqliteFailure(session_->Connection(), code, limit_);
}

}  // namespace qv::standin
