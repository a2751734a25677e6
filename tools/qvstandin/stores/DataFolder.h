// The folder that the server works on: its databases, the files that it keeps, and those on their
// way in and out.
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
#include "tools/qvstandin/databases/Sqlite.h"

namespace qv::standin {

// Under the folder: db/NAME.sqlite for each logical database, databases.json for those that live
// elsewhere, directory.sqlite, answers/ for what is too large for a reply, files/ and ids/ for the
// files of clients, incoming/ for those that are not whole yet. What Prepare has set up may then be
// used from any thread.
class DataFolder {
 public:
  explicit DataFolder(std::string path) : path_(std::move(path)) {}

  // Takes the folder for this object, makes what is missing, sample databases and files among it,
  // and clears away answers and unfinished files of an earlier run.
  Outcome Prepare();
  // Gives the folder back, once nothing works on it any more.
  void Release() { lock_.reset(); }
  // Whether clients are told to ask for packed answers.
  Outcome SetCompression(bool on);

  // The database of that name; null when there is none. `limit` outlives it.
  [[nodiscard]] std::unique_ptr<Database> Open(std::string_view name, WorkLimit& limit) const;

  // What clients connect with to work on the database themselves; null when there is no such text.
  [[nodiscard]] const std::string* ConnectionText(std::string_view name) const;

  // The groups, users and departments; null when they cannot be had. `limit` outlives it.
  [[nodiscard]] std::unique_ptr<Directory> OpenDirectory(WorkLimit& limit) const;

  // With a separator at its end.
  [[nodiscard]] std::string AnswerFolder() const;
  [[nodiscard]] std::string IncomingFolder() const;

  // There once Prepare went well.
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
  std::optional<FileStore> files_;
  std::optional<IdStore> ids_;
  SqliteConnection lock_;  // an open transaction, which ends with the process too
};

}  // namespace qv::standin
