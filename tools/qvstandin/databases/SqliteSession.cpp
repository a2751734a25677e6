#include "SqliteSession.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/text/Numbers.h"

namespace qv::standin {

namespace {

constexpr std::size_t kMostKept = 32;
constexpr std::size_t kLongestKept = 4096;

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

// What these create lasts as long as the connection.
bool IsTemporary(int action) {
  return action == SQLITE_CREATE_TEMP_INDEX || action == SQLITE_CREATE_TEMP_TABLE ||
         action == SQLITE_CREATE_TEMP_TRIGGER || action == SQLITE_CREATE_TEMP_VIEW;
}

}  // namespace

std::unique_ptr<SqliteSession> SqliteSession::Open(const std::string& path,
                                                   std::size_t cell_limit) {
  std::unique_ptr<SqliteSession> session(new SqliteSession(path));  // its constructor is private
  session->connection_ = OpenSqlite(path);
  const bool is_open = session->connection_ != nullptr && session->Confine(cell_limit);
  return is_open ? std::move(session) : nullptr;
}

bool SqliteSession::Confine(std::size_t cell_limit) {
  sqlite3* const connection = connection_.get();
  sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, text::SaturatedTo32Bits(cell_limit));
  sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, 0);
  const auto authorize = [](void* self, int action, const char*, const char* function, const char*,
                            const char*) {
    return static_cast<SqliteSession*>(self)->Authorize(action, function);
  };
  sqlite3_set_authorizer(connection, authorize, this);
  const auto note = [](void* self, sqlite3*, const char*, int) {
    static_cast<SqliteSession*>(self)->has_written_ = true;
    return SQLITE_OK;
  };
  sqlite3_wal_hook(connection, note, this);
  return BoundFunctions(connection, limit_) == SQLITE_OK && ReplaceCounters();
}

int SqliteSession::Authorize(int action, const char* function) {
  if (is_trusted_) return SQLITE_OK;
  if (IsTemporary(action)) Spoil();
  return IsRefused(action, function) ? SQLITE_DENY : SQLITE_OK;
}

bool SqliteSession::ReplaceCounters() {
  constexpr int kKind = SQLITE_UTF8 | SQLITE_INNOCUOUS;
  const auto in_all = [](sqlite3_context* context, int, sqlite3_value**) {
    const auto* const self = static_cast<const SqliteSession*>(sqlite3_user_data(context));
    const sqlite3_int64 changes = sqlite3_total_changes64(self->Connection());
    sqlite3_result_int64(context, changes - self->changes_before_);
  };
  const auto last = [](sqlite3_context* context, int, sqlite3_value**) {
    const auto* const self = static_cast<const SqliteSession*>(sqlite3_user_data(context));
    sqlite3* const connection = self->Connection();
    const bool is_own = sqlite3_total_changes64(connection) != self->changes_before_;
    sqlite3_result_int64(context, is_own ? sqlite3_changes64(connection) : 0);
  };
  const auto replace = [this](const char* name, auto function) {
    return sqlite3_create_function(connection_.get(), name, 0, kKind, this, function, nullptr,
                                   nullptr) == SQLITE_OK;
  };
  return replace("total_changes", +in_all) && replace("changes", +last);
}

void SqliteSession::Begin(WorkLimit& limit) {
  limit_ = &limit;
  WatchLimit(connection_.get(), limit);
}

bool SqliteSession::End() {
  sqlite3* const connection = connection_.get();
  UnwatchLimit(connection);
  limit_ = nullptr;
  changes_before_ = sqlite3_total_changes64(connection);
  sqlite3_set_last_insert_rowid(connection, 0);
  return !is_spoiled_ && !is_trusted_ && sqlite3_get_autocommit(connection) != 0 &&
         sqlite3_txn_state(connection, nullptr) == SQLITE_TXN_NONE;
}

// Others may be reading what is to be moved; then it is moved later.
bool SqliteSession::Refresh() {
  if (!has_written_) return true;
  const int code = sqlite3_wal_checkpoint_v2(connection_.get(), "main", SQLITE_CHECKPOINT_TRUNCATE,
                                             nullptr, nullptr);
  has_written_ = code == SQLITE_BUSY;
  return code == SQLITE_OK || code == SQLITE_BUSY;
}

// Systems that cannot tell let nobody replace an open file.
bool SqliteSession::IsFresh() const {
  int has_moved = 0;
  sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &has_moved);
  return has_moved == 0;
}

int SqliteSession::Prepare(const char* text, int length, SqliteStatement& statement,
                           const char*& rest) {
  sqlite3_stmt* prepared = nullptr;
  const int code = sqlite3_prepare_v2(connection_.get(), text, length, &prepared, &rest);
  statement.reset(prepared);
  return code;
}

int SqliteSession::RunTrusted(const char* sql) {
  is_trusted_ = true;  // until the end, since a kept statement may be prepared again as it runs
  SqliteStatement statement = Take(sql);
  int code = SQLITE_OK;
  const char* rest = nullptr;
  if (statement == nullptr) code = Prepare(sql, -1, statement, rest);
  if (code == SQLITE_OK) code = sqlite3_step(statement.get());
  if (code == SQLITE_DONE) Keep(sql, std::move(statement));
  is_trusted_ = false;
  return code == SQLITE_DONE ? SQLITE_OK : code;
}

SqliteStatement SqliteSession::Take(std::string_view text) {
  const auto found = std::ranges::find_if(kept_, [&](const KeptStatement& kept) {
    return kept.text == text && kept.is_trusted == is_trusted_;
  });
  if (found == kept_.end()) return nullptr;
  SqliteStatement statement = std::move(found->statement);
  kept_.erase(found);
  return statement;
}

void SqliteSession::Keep(std::string_view text, SqliteStatement statement) {
  if (text.size() > kLongestKept) return;
  sqlite3_reset(statement.get());
  sqlite3_clear_bindings(statement.get());
  if (kept_.size() == kMostKept) kept_.erase(kept_.begin());
  kept_.push_back({std::string(text), is_trusted_, std::move(statement)});
}

}  // namespace qv::standin
