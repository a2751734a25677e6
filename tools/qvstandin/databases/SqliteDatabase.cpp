#include "SqliteDatabase.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <utility>

#include "ClientSql.h"
#include "base/text/Numbers.h"

namespace qv::standin {

namespace {

bool IsRefusedFunction(const char* name) {
  constexpr std::array<std::string_view, 4> kRefused{"load_extension", "readfile", "writefile",
                                                     "fts3_tokenizer"};
  return name != nullptr && std::ranges::find(kRefused, name) != kRefused.end();
}

bool IsRefused(int action, const char* function) {
  switch (action) {
    case SQLITE_ATTACH:
    case SQLITE_DETACH:
    case SQLITE_PRAGMA:
    case SQLITE_TRANSACTION:
    case SQLITE_SAVEPOINT:
    case SQLITE_CREATE_VTABLE:
      return true;
    case SQLITE_FUNCTION:
      return IsRefusedFunction(function);
    default:
      return false;
  }
}

}  // namespace

std::unique_ptr<SqliteDatabase> SqliteDatabase::Open(const std::string& path, WorkLimit& limit,
                                                     std::size_t cell_limit) {
  SqliteConnection connection = OpenSqlite(path, limit);
  if (connection == nullptr) return nullptr;
  std::unique_ptr<SqliteDatabase> database(new SqliteDatabase(std::move(connection), limit));
  return database->Confine(cell_limit) ? std::move(database) : nullptr;
}

SqliteDatabase::SqliteDatabase(SqliteConnection connection, WorkLimit& limit)
    : connection_(std::move(connection)), limit_(limit) {}

bool SqliteDatabase::Confine(std::size_t cell_limit) {
  sqlite3* const connection = connection_.get();
  sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, text::SaturatedTo32Bits(cell_limit));
  sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, 0);
  const auto authorize = [](void* self, int action, const char*, const char* function, const char*,
                            const char*) {
    const bool trusted = static_cast<SqliteDatabase*>(self)->trusted_;
    return !trusted && IsRefused(action, function) ? SQLITE_DENY : SQLITE_OK;
  };
  sqlite3_set_authorizer(connection, authorize, this);
  return BoundFunctions(connection, limit_) == SQLITE_OK;
}

Outcome SqliteDatabase::Query(const std::string& sql, RowSink& sink) {
  const std::string text = WithPlainTableNames(sql, text::kSqlite);
  const char* rest = text.c_str();
  const char* const end = rest + text.size();
  SqliteStatement statement;
  if (const int code = Prepare(rest, end, statement); code != SQLITE_OK) return Failure(code);
  if (statement == nullptr) return {ErrorCode::kSqlFailed, "there is no statement", error::kSyntax};
  if (HasMore(rest, end)) return {ErrorCode::kNotPermitted, "a query must be one statement"};
  if (sqlite3_stmt_readonly(statement.get()) == 0 || sqlite3_column_count(statement.get()) == 0) {
    return {ErrorCode::kNotPermitted, "a query must only read"};
  }
  return Deliver(statement.get(), sink);
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

// Skips blanks, comments and lone semicolons. A NUL ends the text.
int SqliteDatabase::Prepare(const char*& text, const char* end, SqliteStatement& statement) {
  statement.reset();
  while (*text != '\0' && statement == nullptr) {
    sqlite3_stmt* prepared = nullptr;
    // With the NUL counted in, the rest of a long text is not copied for every statement.
    const std::ptrdiff_t length = end - text + 1;
    if (length > std::numeric_limits<int>::max()) return SQLITE_TOOBIG;
    const int code =
        sqlite3_prepare_v2(connection_.get(), text, static_cast<int>(length), &prepared, &text);
    if (code != SQLITE_OK) return code;
    statement.reset(prepared);
  }
  return SQLITE_OK;
}

// A statement that does not compile counts as well: it may compile after the previous ones have
// run.
bool SqliteDatabase::HasMore(const char* text, const char* end) {
  SqliteStatement next;
  return Prepare(text, end, next) != SQLITE_OK || next != nullptr;
}

// If there is a sink, it receives the rows of the last statement.
Outcome SqliteDatabase::RunAll(std::string_view sql, Arguments arguments, RowSink* sink) {
  const std::string text = WithPlainTableNames(sql, text::kSqlite);
  const char* rest = text.c_str();
  const char* const end = rest + text.size();
  SqliteStatement statement;
  bool more = HasMore(rest, end);
  if (!more) return {ErrorCode::kSqlFailed, "there is no statement", error::kSyntax};
  while (more) {
    // Short statements end before SQLite calls the progress handler.
    if (limit_.IsOver()) return Failure(SQLITE_INTERRUPT);
    if (const int code = Prepare(rest, end, statement); code != SQLITE_OK) return Failure(code);
    if (Outcome bound = Bind(statement.get(), arguments); !bound.Ok()) return bound;
    more = HasMore(rest, end);
    const bool delivers = sink != nullptr && !more;
    Outcome outcome = delivers ? Deliver(statement.get(), *sink) : Step(statement.get());
    if (!outcome.Ok()) return outcome;
  }
  return {};
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
  const Outcome unknown{ErrorCode::kNoProcedure, "no procedure " + name};
  const std::string text =
      std::string("SELECT sql FROM ") + kProcedureTable + " WHERE name = ?1 COLLATE NOCASE";
  const char* rest = text.c_str();
  SqliteStatement statement;
  if (Prepare(rest, rest + text.size(), statement) != SQLITE_OK) return unknown;
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
  return {};
}

Outcome SqliteDatabase::RunTrusted(const char* sql) {
  trusted_ = true;
  const int code = sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr);
  trusted_ = false;
  return code == SQLITE_OK ? Outcome() : Failure(code);
}

Outcome SqliteDatabase::EndTransaction(Outcome outcome) {
  if (outcome.Ok()) outcome = RunTrusted("COMMIT");
  // A statement that failed may have ended the transaction already.
  if (!outcome.Ok() && sqlite3_get_autocommit(connection_.get()) == 0) {
    // The limit that ended the work must not interrupt the rollback.
    sqlite3_progress_handler(connection_.get(), 0, nullptr, nullptr);
    if (Outcome undone = RunTrusted("ROLLBACK"); !undone.Ok()) outcome.text += "; " + undone.text;
  }
  return outcome;
}

Outcome SqliteDatabase::Failure(int code) { return SqliteFailure(connection_.get(), code, limit_); }

}  // namespace qv::standin
