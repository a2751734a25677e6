#include "CacheIndex.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <utility>

#include "base/platform/Folder.h"
#include "base/platform/Platform.h"

namespace qv {

namespace {

// A call may have to wait several times.
constexpr int kBusyTimeoutMs = 500;
// The longest key or row, so that a planted one cannot exhaust the host's memory.
constexpr int kMaxLength = 64 * 1024 * 1024;
constexpr std::size_t kMaxFileName = 255;

// A file's new name must be on the disk before its entry is, and the entry before the old file is
// deleted. A rollback journal ensures the first, because every commit flushes the folder with the
// journal; "extra" flushes it again after the journal is deleted.
constexpr const char* kSetUp[] = {
    "PRAGMA cell_size_check = ON",
    "PRAGMA synchronous = EXTRA",
};
constexpr const char kTable[] =
    "qv_tp_sqlindex(query_text BLOB NOT NULL PRIMARY KEY, "
    "file_name TEXT NOT NULL, compress_flag INTEGER NOT NULL) WITHOUT ROWID";

constexpr const char kJournal[] = "-journal";
// The result for a database that is not the index; SQLite itself does not return this code here.
constexpr int kForeign = SQLITE_MISMATCH;

// Opening a pipe would block, and a link leads out of the folder. The index never has the files of
// a write-ahead log, and reading a database that has them changes it. Each file is checked only
// once, because the journal of another program comes and goes.
bool MayOpen(const std::string& path) {
  const auto type_of = [&path](const char* companion) {
    return platform::TypeOf(path + companion);
  };
  using enum std::filesystem::file_type;
  for (const char* const companion : {"", kJournal}) {
    const std::filesystem::file_type type = type_of(companion);
    if (type != regular && type != not_found) return false;
  }
  return type_of("-wal") == not_found && type_of("-shm") == not_found;
}

// Returns true if the header marks the database as WAL. Read through SQLite's own handle (closing a
// second one would drop its POSIX locks), and before the first query, which would create the -wal
// file.
bool HasWriteAheadLog(sqlite3* database) {
  using std::string_view_literals::operator""sv;
  constexpr std::string_view kMagic = "SQLite format 3\0"sv;
  constexpr std::size_t kWriteVersion = 18;
  constexpr std::size_t kReadVersion = 19;
  std::array<char, kReadVersion + 1> head{};
  sqlite3_file* file = nullptr;
  sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  if (file == nullptr || file->pMethods == nullptr) return false;
  const int read = file->pMethods->xRead(file, head.data(), static_cast<int>(head.size()), 0);
  return read == SQLITE_OK && std::string_view(head.data(), kMagic.size()) == kMagic &&
         (head[kWriteVersion] == 2 || head[kReadVersion] == 2);
}

// Creates the file privately; SQLite gives the journal the same rights.
void CreatePrivately(const std::string& path) {
  const platform::FilePtr file(platform::CreatePrivateFile(path, platform::Create::kNew));
}

bool MoveAside(const std::string& path) {
  if (!platform::ReplaceByRename(path, path + ".broken")) return false;
  platform::RemoveFile(path + kJournal);
  return true;
}

// Restricts the file to holding rows: nothing in it may run.
void Restrict(sqlite3* database) {
  sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  sqlite3_limit(database, SQLITE_LIMIT_LENGTH, kMaxLength);
}

}  // namespace

std::unique_ptr<CacheIndex> CacheIndex::Open(const std::string& path) {
  // Closing any handle of a file drops the locks that this process has on it, so no other thread
  // may use the file between its creation and its opening.
  static std::mutex opening;
  const std::lock_guard lock(opening);
  for (const bool first : {true, false}) {
    if (!MayOpen(path)) return nullptr;
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
  const std::u8string name = platform::PathFromNarrow(path).u8string();
  constexpr int kFlags =
      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW;
  sqlite3* opened = nullptr;
  const int result =
      sqlite3_open_v2(reinterpret_cast<const char*>(name.c_str()), &opened, kFlags, nullptr);
  database_.reset(opened);
  if (result != SQLITE_OK) return result;
  Restrict(opened);
  sqlite3_busy_timeout(opened, kBusyTimeoutMs);
  if (HasWriteAheadLog(opened)) return kForeign;
  for (const char* const sql : kSetUp) {
    if (const int done = Execute(sql); done != SQLITE_OK) return done;
  }
  int table = Recognise();
  if (table == SQLITE_DONE) {
    // Another program may have created it meanwhile.
    table = Execute((std::string("CREATE TABLE IF NOT EXISTS ") + kTable).c_str());
    if (table == SQLITE_OK) table = SQLITE_ROW;
  }
  if (table != SQLITE_ROW) return table;
  const int checked = Check();
  return checked == SQLITE_OK ? PrepareAll() : checked;
}

int CacheIndex::Execute(const char* sql) {
  const Deadline deadline(database_.get());
  return sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr);
}

// A different table, or anything else in the database, belongs to somebody else, or was planted to
// run when the table is used.
int CacheIndex::Recognise() {
  IndexStatement schema;
  const int prepared = schema.Prepare(database_.get(), "SELECT sql FROM sqlite_master");
  if (prepared != SQLITE_OK) return prepared;
  StatementRun run(schema);
  const int first = run.Step();
  if (first != SQLITE_ROW) return first;
  // The database stores the statement in these words, however it was written.
  const std::string own = std::string("CREATE TABLE ") + kTable;
  if (run.Text(0, own.size()) != own) return kForeign;
  const int second = run.Step();
  if (second == SQLITE_ROW) return kForeign;
  return second == SQLITE_DONE ? SQLITE_ROW : second;
}

// Damage further inside would otherwise show only later, when the index is no longer replaced.
int CacheIndex::Check() {
  IndexStatement check;
  const int prepared = check.Prepare(database_.get(), "PRAGMA quick_check(1)");
  if (prepared != SQLITE_OK) return prepared;
  StatementRun run(check);
  const int result = run.Step();
  // A check that timed out found no damage: use the index.
  if (result == SQLITE_INTERRUPT) return SQLITE_OK;
  if (result != SQLITE_ROW) return result;
  return run.Text(0, kMaxFileName) == "ok" ? SQLITE_OK : SQLITE_CORRUPT;
}

int CacheIndex::PrepareAll() {
  const std::pair<IndexStatement&, const char*> statements[] = {
      {find_, "SELECT file_name, compress_flag FROM qv_tp_sqlindex WHERE query_text = ?1"},
      {put_,
       "INSERT OR REPLACE INTO qv_tp_sqlindex(query_text, file_name, compress_flag) "
       "VALUES(?1, ?2, ?3)"},
      {remove_, "DELETE FROM qv_tp_sqlindex WHERE query_text = ?1 AND file_name = ?2"},
      {files_, "SELECT file_name FROM qv_tp_sqlindex"},
  };
  for (const auto& [statement, sql] : statements) {
    const int result = statement.Prepare(database_.get(), sql);
    if (result != SQLITE_OK) return result;
  }
  return SQLITE_OK;
}

CacheIndex::Transaction::~Transaction() {
  if (sqlite3_get_autocommit(index_.database_.get()) == 0) (void)index_.Execute("ROLLBACK");
}

bool CacheIndex::Transaction::Begin() { return index_.Execute("BEGIN IMMEDIATE") == SQLITE_OK; }

bool CacheIndex::Transaction::Commit() { return index_.Execute("COMMIT") == SQLITE_OK; }

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

bool CacheIndex::RemoveAll() { return Execute("DELETE FROM qv_tp_sqlindex") == SQLITE_OK; }

std::optional<std::unordered_set<std::string>> CacheIndex::Files() {
  std::unordered_set<std::string> files;
  StatementRun run(files_);
  int result = run.Step();
  for (; result == SQLITE_ROW; result = run.Step()) files.insert(run.Text(0, kMaxFileName));
  if (result != SQLITE_DONE) return std::nullopt;
  return files;
}

}  // namespace qv
