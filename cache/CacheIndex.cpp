#include "CacheIndex.h"

#include <cstdio>
#include <filesystem>
#include <mutex>
#include <utility>

#include "platform/Platform.h"

namespace qv {

namespace {

constexpr int kBusyTimeoutMs = 2000;
// No key or row is longer, so that a planted one cannot take the memory of the host.
constexpr int kMaxLength = 64 * 1024 * 1024;
constexpr std::size_t kMaxFileName = 255;

// A file's new name must be on the disk before the entry that tells of it, and that entry before
// the old file goes. With a rollback journal the first holds, because the folder is flushed with
// the journal at every commit; "extra" flushes it once more when the journal is gone.
constexpr const char kTable[] =
    "CREATE TABLE IF NOT EXISTS qv_tp_sqlindex(query_text BLOB NOT NULL PRIMARY KEY, "
    "file_name TEXT NOT NULL, compress_flag INTEGER NOT NULL) WITHOUT ROWID";
constexpr const char* kSetUp[] = {
    "PRAGMA cell_size_check = ON",
    "PRAGMA journal_mode = DELETE",
    "PRAGMA synchronous = EXTRA",
    kTable,
};

// The rights of the file pass to the journal that is made beside it.
void CreatePrivately(const std::string& path) {
  std::FILE* const file = platform::CreatePrivateFile(path, platform::Create::kNew);
  if (file != nullptr) std::fclose(file);
}

bool MoveAside(const std::string& path) {
  if (!platform::ReplaceFile(path, path + ".broken")) return false;
  for (const char* const companion : {"-journal", "-wal", "-shm"})
    platform::RemoveFile(path + companion);
  return true;
}

// Nothing in the file may do more than hold rows.
void Restrict(sqlite3* database) {
  sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  sqlite3_limit(database, SQLITE_LIMIT_LENGTH, kMaxLength);
}

}  // namespace

std::unique_ptr<CacheIndex> CacheIndex::Open(const std::string& path) {
  // Closing any handle of a file drops the locks that this process has on it, so nothing may use
  // the file between its creation and its opening.
  static std::mutex opening;
  const std::lock_guard lock(opening);
  for (const bool first : {true, false}) {
    CreatePrivately(path);
    std::unique_ptr<CacheIndex> index(new CacheIndex);
    const int result = index->Connect(path);
    if (result == SQLITE_OK) return index;
    const bool damaged = result == SQLITE_NOTADB || result == SQLITE_CORRUPT;
    index.reset();
    if (!damaged || !first || !MoveAside(path)) break;
  }
  return nullptr;
}

int CacheIndex::Connect(const std::string& path) {
  // SQLite takes names in UTF-8 on every system.
  const std::u8string name = std::filesystem::path(path).u8string();
  constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  sqlite3* opened = nullptr;
  const int result =
      sqlite3_open_v2(reinterpret_cast<const char*>(name.c_str()), &opened, kFlags, nullptr);
  database_.reset(opened);
  if (result != SQLITE_OK) return result;
  Restrict(opened);
  sqlite3_busy_timeout(opened, kBusyTimeoutMs);
  for (const char* const sql : kSetUp) {
    Statement statement;
    if (const int prepared = statement.Prepare(opened, sql); prepared != SQLITE_OK) return prepared;
    if (const int done = statement.Execute(); done != SQLITE_DONE) return done;
  }
  const int checked = Check();
  return checked == SQLITE_OK ? PrepareAll() : checked;
}

// Damage further inside would otherwise show only later, when nobody begins the index anew.
int CacheIndex::Check() {
  Statement check;
  const int prepared = check.Prepare(database_.get(), "PRAGMA quick_check(1)");
  if (prepared != SQLITE_OK) return prepared;
  StatementRun run(check);
  const int result = run.Step();
  if (result != SQLITE_ROW) return result;
  return run.Text(0, kMaxFileName) == "ok" ? SQLITE_OK : SQLITE_CORRUPT;
}

int CacheIndex::PrepareAll() {
  const std::pair<Statement&, const char*> statements[] = {
      {begin_, "BEGIN IMMEDIATE"},
      {commit_, "COMMIT"},
      {rollback_, "ROLLBACK"},
      {find_, "SELECT file_name, compress_flag FROM qv_tp_sqlindex WHERE query_text = ?1"},
      {put_,
       "INSERT OR REPLACE INTO qv_tp_sqlindex(query_text, file_name, compress_flag) "
       "VALUES(?1, ?2, ?3)"},
      {remove_, "DELETE FROM qv_tp_sqlindex WHERE query_text = ?1 AND file_name = ?2"},
      {remove_all_, "DELETE FROM qv_tp_sqlindex"},
      {files_, "SELECT file_name FROM qv_tp_sqlindex"},
  };
  for (const auto& [statement, sql] : statements) {
    const int result = statement.Prepare(database_.get(), sql);
    if (result != SQLITE_OK) return result;
  }
  return SQLITE_OK;
}

CacheIndex::Transaction::~Transaction() {
  if (sqlite3_get_autocommit(index_.database_.get()) == 0) index_.rollback_.Execute();
}

bool CacheIndex::Transaction::Begin() { return index_.begin_.Execute() == SQLITE_DONE; }

bool CacheIndex::Transaction::Commit() { return index_.commit_.Execute() == SQLITE_DONE; }

std::optional<CacheIndex::Entry> CacheIndex::Find(const std::string& key) {
  StatementRun run(find_);
  run.BindBytes(1, key);
  if (run.Step() != SQLITE_ROW) return std::nullopt;
  return Entry{run.Text(0, kMaxFileName), run.Number(1)};
}

bool CacheIndex::Put(const std::string& key, const Entry& entry) {
  StatementRun run(put_);
  run.BindBytes(1, key);
  run.BindText(2, entry.file);
  run.BindNumber(3, entry.flag);
  return run.Step() == SQLITE_DONE;
}

bool CacheIndex::Remove(const std::string& key, const std::string& file) {
  StatementRun run(remove_);
  run.BindBytes(1, key);
  run.BindText(2, file);
  return run.Step() == SQLITE_DONE;
}

bool CacheIndex::RemoveAll() { return remove_all_.Execute() == SQLITE_DONE; }

std::optional<std::unordered_set<std::string>> CacheIndex::Files() {
  std::unordered_set<std::string> files;
  StatementRun run(files_);
  int result = run.Step();
  for (; result == SQLITE_ROW; result = run.Step()) files.insert(run.Text(0, kMaxFileName));
  if (result != SQLITE_DONE) return std::nullopt;
  return files;
}

}  // namespace qv
