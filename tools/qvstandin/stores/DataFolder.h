// The server's data folder: its databases, stored files, and temporary files.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Directory.h"
#include "FileStore.h"
#include "IdStore.h"
#include "tools/qvstandin/common/Work.h"
#include "tools/qvstandin/databases/Database.h"
#include "tools/qvstandin/databases/DatabaseSettings.h"
#include "tools/qvstandin/databases/KeptDatabases.h"
#include "tools/qvstandin/databases/Sqlite.h"

namespace qv::standin {

// The folder contains db/NAME.sqlite for each logical database, databases.json for databases that
// are elsewhere, directory.sqlite, answers/ for answers that are too large for a reply, files/ and
// ids/ for the files of clients, and incoming/ for unfinished files. After Prepare(), any thread
// may use it.
class DataFolder {
 public:
  explicit DataFolder(std::string path) : path_(std::move(path)) {}

  // Locks the folder, creates what is missing, including sample databases and files, and removes
  // the answers and unfinished files of an earlier run.
  Outcome Prepare();
  // Unlocks the folder. Nothing may use it any more.
  void Release() { lock_.reset(); }
  // Sets the longest value of an answer, in bytes, for databases that are opened from now on. Call
  // it before other threads use this object.
  void SetCellLimit(std::size_t bytes) { cell_limit_ = bytes; }
  // Sets whether clients are told to request compressed answers.
  Outcome SetCompression(bool on);

  // Opens the database of that name, or takes it from `kept`, which may be null. Returns null if
  // there is none. `limit` and `kept` outlive the database.
  [[nodiscard]] std::unique_ptr<Database> Open(std::string_view name, WorkLimit& limit,
                                               KeptDatabases* kept = nullptr) const;

  // Returns the text with which clients connect to the database directly, or null if there is none.
  [[nodiscard]] const std::string* ConnectionText(std::string_view name) const;

  // Opens the groups, users and departments. Returns null if that fails. `limit` outlives the
  // directory.
  [[nodiscard]] std::unique_ptr<Directory> OpenDirectory(WorkLimit& limit) const;

  // These paths end with a separator.
  [[nodiscard]] std::string AnswerFolder() const;
  [[nodiscard]] std::string IncomingFolder() const;

  // Call these only after Prepare() succeeded.
  FileStore& Files() { return *files_; }
  IdStore& Ids() { return *ids_; }

 private:
  Outcome Lock();
  Outcome MakeSamples() const;
  Outcome OpenStores();
  [[nodiscard]] const DatabaseSettings* SettingsOf(std::string_view name) const;
  [[nodiscard]] std::string DatabaseFile(std::string_view name) const;
  [[nodiscard]] std::string DirectoryFile() const;

  std::string path_;
  DatabaseSettingsByName settings_;
  std::optional<std::size_t> cell_limit_;  // empty: each engine's own
  std::optional<FileStore> files_;
  std::optional<IdStore> ids_;
  SqliteConnection lock_;  // an open transaction, which also ends with the process
};

}  // namespace qv::standin
