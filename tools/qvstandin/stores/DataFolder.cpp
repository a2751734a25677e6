#include "DataFolder.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>

#include "Samples.h"
#include "base/platform/Platform.h"
#include "base/storage/OutputFile.h"
#include "tools/qvstandin/databases/OdbcDatabase.h"
#include "tools/qvstandin/databases/SqliteDatabase.h"
#include "tools/qvstandin/databases/postgres/Postgres.h"

namespace qv::standin {

namespace {

constexpr const char* kAnswers = "answers";
constexpr const char* kIncoming = "incoming";
constexpr const char* kFiles = "files";
constexpr const char* kIds = "ids";
constexpr const char* kSettingsFile = "databases.json";
constexpr std::string_view kSettingsDatabase = "PLATDB";
constexpr std::chrono::seconds kSettingsTime{10};

// Removes the files that a killed run left behind.
void RemoveFilesIn(const std::string& folder) {
  std::error_code error;
  for (const auto& entry :
       std::filesystem::directory_iterator(platform::PathFromNarrow(folder), error)) {
    platform::RemoveFile(platform::NarrowFromPath(entry.path()));
  }
}

Outcome MakeMissing(const SampleDatabase& sample, const std::string& file) {
  std::error_code error;
  return std::filesystem::exists(platform::PathFromNarrow(file), error)
             ? Outcome()
             : CreateSample(sample, file);
}

}  // namespace

Outcome DataFolder::Prepare() {
  for (const char* const below : {"db", kAnswers, kIncoming, kIds}) {
    const std::string folder = platform::NarrowFromPath(platform::PathFromNarrow(path_) / below);
    if (!platform::CreatePrivateFolder(folder)) {
      return {ErrorCode::kNoDatabase, "cannot create the folder " + folder};
    }
  }
  // Links above the folder are followed, since its owner controls them; links below it are not.
  std::optional<std::string> whole = platform::AbsolutePath(path_);
  if (!whole)
    return {ErrorCode::kNoDatabase, "cannot find the absolute path of the folder " + path_};
  path_ = std::move(*whole);
  if (Outcome locked = Lock(); !locked.Ok()) return locked;
  RemoveFilesIn(AnswerFolder());
  RemoveFilesIn(IncomingFolder());
  const std::string settings =
      platform::NarrowFromPath(platform::PathFromNarrow(path_) / kSettingsFile);
  if (Outcome read = ReadDatabaseSettings(settings, settings_); !read.Ok()) return read;
  if (Outcome made = MakeSamples(); !made.Ok()) return made;
  return OpenStores();
}

Outcome DataFolder::MakeSamples() const {
  for (const SampleDatabase& sample : SampleDatabases()) {
    const DatabaseSettings* const settings = SettingsOf(sample.name);
    if (settings != nullptr && !settings->odbc.empty()) continue;
    if (Outcome made = MakeMissing(sample, DatabaseFile(sample.name)); !made.Ok()) return made;
  }
  if (Outcome made = MakeMissing(SampleDirectory(), DirectoryFile()); !made.Ok()) return made;
  const std::string files = platform::NarrowFromPath(platform::PathFromNarrow(path_) / kFiles);
  std::error_code error;
  return std::filesystem::exists(platform::PathFromNarrow(files), error) ? Outcome{}
                                                                         : CreateSampleFiles(files);
}

Outcome DataFolder::OpenStores() {
  const auto below = platform::Folder::Open(path_);
  auto files = below ? below->Enter(kFiles) : std::nullopt;
  auto ids = below ? below->Enter(kIds) : std::nullopt;
  if (!files || !ids) return {ErrorCode::kNoDatabase, "cannot open the stores in " + path_};
  files_.emplace(std::move(*files), IncomingFolder());
  ids_.emplace(std::move(*ids), IncomingFolder());
  return {};
}

// Two servers in one folder would remove each other's answers.
Outcome DataFolder::Lock() {
  const std::string file =
      platform::NarrowFromPath(platform::PathFromNarrow(path_) / "server.lock");
  // Created here, so that only its owner can read it. Usually it exists already.
  { const storage::OutputFile created(file, platform::Create::kNew); }
  sqlite3* opened = nullptr;
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW;
  int code = sqlite3_open_v2(file.c_str(), &opened, flags, nullptr);
  lock_.reset(opened);
  if (code == SQLITE_OK) code = sqlite3_exec(opened, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr);
  if (code == SQLITE_OK) return {};
  lock_.reset();
  if (code == SQLITE_BUSY) return {ErrorCode::kBusy, "another server uses " + path_};
  return {ErrorCode::kNoDatabase, "cannot lock " + file};
}

Outcome DataFolder::SetCompression(bool on) {
  WorkLimit limit(kSettingsTime, [] { return false; });
  const auto database = Open(kSettingsDatabase, limit);
  if (database == nullptr) return {ErrorCode::kNoDatabase, "the settings cannot be opened"};
  const std::string value = on ? "1" : "0";
  std::int32_t failed = 0;
  const std::string sql = "UPDATE Mxd_sys_BaseInfo SET CI_ServerCompress = " + value +
                          ", CI_DefaultSelectCompress = " + value;
  const std::string_view statement = sql;
  return database->Execute({&statement, 1}, failed);
}

std::unique_ptr<Database> DataFolder::Open(std::string_view name, WorkLimit& limit,
                                           KeptDatabases* kept) const {
  if (!IsDatabaseName(name)) return nullptr;
  const DatabaseSettings* const settings = SettingsOf(name);
  if (settings != nullptr && !settings->odbc.empty()) {
    const EngineAccess access{settings->odbc, limit, cell_limit_.value_or(kLongestEngineCell),
                              kept};
    auto postgres = OpenPostgres(access);
    return postgres != nullptr ? std::move(postgres) : std::make_unique<OdbcDatabase>(access);
  }
  return SqliteDatabase::Open(DatabaseFile(name), limit,
                              cell_limit_.value_or(SqliteDatabase::kLongestCell), kept);
}

std::unique_ptr<Directory> DataFolder::OpenDirectory(WorkLimit& limit) const {
  return Directory::Open(DirectoryFile(), limit);
}

const std::string* DataFolder::ConnectionText(std::string_view name) const {
  const DatabaseSettings* const settings = SettingsOf(name);
  if (settings == nullptr || settings->connection_text.empty()) return nullptr;
  return &settings->connection_text;
}

const DatabaseSettings* DataFolder::SettingsOf(std::string_view name) const {
  const auto found = settings_.find(name);
  return found != settings_.end() ? &found->second : nullptr;
}

std::string DataFolder::AnswerFolder() const {
  return platform::NarrowFromPath(platform::PathFromNarrow(path_) / kAnswers / "");
}

std::string DataFolder::IncomingFolder() const {
  return platform::NarrowFromPath(platform::PathFromNarrow(path_) / kIncoming / "");
}

std::string DataFolder::DatabaseFile(std::string_view name) const {
  return platform::NarrowFromPath(platform::PathFromNarrow(path_) / "db" /
                                  (std::string(name) + ".sqlite"));
}

std::string DataFolder::DirectoryFile() const {
  return platform::NarrowFromPath(platform::PathFromNarrow(path_) / "directory.sqlite");
}

}  // namespace qv::standin
