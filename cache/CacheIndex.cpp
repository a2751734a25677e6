#include "CacheIndex.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>
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

// A commit appends to a write-ahead log, which is only flushed when its content moves to the
// database: a power cut takes the last commits, and never more. Programs on several machines cannot
// share such a log, so a folder of a network keeps the rollback journal, which is flushed with
// every commit; "extra" also flushes the folder.
constexpr const char kFlushAlways[] = "PRAGMA synchronous = EXTRA";
constexpr const char kFlushRarely[] = "PRAGMA synchronous = NORMAL";
// The log and its companions exist while programs use the index. The last one to close it removes
// them, so that programs which expect a rollback journal find one.
constexpr const char kUseLog[] = "PRAGMA journal_mode = WAL";
constexpr const char kUseJournal[] = "PRAGMA journal_mode = DELETE";
// Marks the index in its header, where it can be seen before anything is read from the database.
constexpr const char kMark[] = "PRAGMA application_id = 0x51764331";
constexpr std::string_view kMarkBytes = "QvC1";

constexpr const char kTable[] =
    "qv_tp_sqlindex(query_text BLOB NOT NULL PRIMARY KEY, "
    "file_name TEXT NOT NULL, compress_flag INTEGER NOT NULL) WITHOUT ROWID";

constexpr const char kJournal[] = "-journal";
constexpr const char kLog[] = "-wal";
constexpr const char kSharedMemory[] = "-shm";
// The result for a database that is not the index; SQLite itself does not return this code here.
constexpr int kForeign = SQLITE_MISMATCH;

bool HasLogBeside(const std::string& path) {
  constexpr auto kNone = std::filesystem::file_type::not_found;
  return platform::TypeOf(path + kLog) != kNone || platform::TypeOf(path + kSharedMemory) != kNone;
}

// Opening a pipe would block, and a link leads out of the folder. Each file is checked only once,
// because companions come and go. A log is read as a whole when the database is opened.
bool MayOpen(const std::string& path) {
  constexpr std::uintmax_t kLongestLog = std::uintmax_t{512} << 20;
  using enum std::filesystem::file_type;
  for (const char* const companion : {"", kJournal, kLog, kSharedMemory}) {
    const std::filesystem::file_type type = platform::TypeOf(path + companion);
    if (type != regular && type != not_found) return false;
  }
  std::error_code missing;
  const auto length = std::filesystem::file_size(platform::PathFromNarrow(path + kLog), missing);
  return missing || length <= kLongestLog;
}

struct Head {
  bool has_log = false;
  bool is_marked = false;
};

// Reads the header through SQLite's own handle (closing a second one would drop its POSIX locks),
// and before the first query, which would create the log.
Head ReadHead(sqlite3* database) {
  using std::string_view_literals::operator""sv;
  constexpr std::string_view kMagic = "SQLite format 3\0"sv;
  constexpr std::size_t kWriteVersion = 18;
  constexpr std::size_t kReadVersion = 19;
  constexpr std::size_t kApplication = 68;
  std::array<char, kApplication + kMarkBytes.size()> head{};
  const std::string_view bytes(head.data(), head.size());
  sqlite3_file* file = nullptr;
  sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  if (file == nullptr || file->pMethods == nullptr) return {};
  const int read = file->pMethods->xRead(file, head.data(), static_cast<int>(head.size()), 0);
  if (read != SQLITE_OK || !bytes.starts_with(kMagic)) return {};
  return {.has_log = head[kWriteVersion] == 2 || head[kReadVersion] == 2,
          .is_marked = bytes.substr(kApplication) == kMarkBytes};
}

// Creates the file privately; SQLite gives the journal the same rights.
void CreatePrivately(const std::string& path) {
  const platform::FilePtr file(platform::CreatePrivateFile(path, platform::Create::kNew));
}

bool MoveAside(const std::string& path) {
  if (!platform::ReplaceByRename(path, path + ".broken")) return false;
  for (const char* const companion : {kJournal, kLog, kSharedMemory}) {
    platform::RemoveFile(path + companion);
  }
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
  // Before the header is read, because a program that begins to use the log marks the header first.
  const bool has_log_beside = HasLogBeside(path);
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
  const Head head = ReadHead(opened);
  const bool may_have_log = platform::IsLocalFolder(platform::FolderOf(path));
  // Reading a database changes the log that it has.
  const bool has_log = head.has_log || has_log_beside;
  if (has_log && !(head.is_marked && may_have_log)) return kForeign;
  for (const char* const sql : {"PRAGMA cell_size_check = ON", kFlushAlways}) {
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
  if (checked != SQLITE_OK) return checked;
  if (may_have_log && (head.is_marked || Execute(kMark) == SQLITE_OK)) UseLog();
  return PrepareAll();
}

// Without the log, the index works all the same.
void CacheIndex::UseLog() {
  IndexStatement mode;
  if (mode.Prepare(database_.get(), kUseLog) != SQLITE_OK) return;
  {
    StatementRun run(mode);
    has_log_ = run.Step() == SQLITE_ROW && run.Text(0, kMaxFileName) == "wal";
  }
  if (has_log_) (void)Execute(kFlushRarely);
}

CacheIndex::~CacheIndex() {
  if (!has_log_) return;
  // Fails at once while other programs use the index.
  sqlite3_busy_timeout(database_.get(), 0);
  if (Execute(kFlushAlways) == SQLITE_OK) (void)Execute(kUseJournal);
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
      {begin_, "BEGIN IMMEDIATE"},
      {commit_, "COMMIT"},
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

bool CacheIndex::Transaction::Begin() { return StatementRun(index_.begin_).Step() == SQLITE_DONE; }

bool CacheIndex::Transaction::Commit() {
  return StatementRun(index_.commit_).Step() == SQLITE_DONE;
}

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
