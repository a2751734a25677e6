// The folder that the server works on: its databases, and the files of answers on their way out.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>

#include "Database.h"
#include "DatabaseSettings.h"
#include "WorkLimit.h"

namespace qv::standin {

// Under the folder: db/NAME.sqlite for each logical database, databases.json for those that live
// elsewhere, answers/ for what is too large for a reply. What Prepare has set up may then be used
// from any thread.
class DataFolder {
 public:
  explicit DataFolder(std::string path) : path_(std::move(path)) {}

  // Takes the folder for this object, makes what is missing, the sample databases among it, and
  // clears away answers of an earlier run.
  Outcome Prepare();
  // Gives the folder back, once nothing works on it any more.
  void Release() { lock_.reset(); }
  // Whether clients are told to ask for packed answers.
  Outcome SetCompression(bool on);

  // The database of that name; null when there is none. `limit` outlives it.
  [[nodiscard]] std::unique_ptr<Database> Open(std::string_view name, WorkLimit& limit) const;

  // What clients connect with to work on the database themselves; null when there is no such text.
  [[nodiscard]] const std::string* ConnectionText(std::string_view name) const;

  // With a separator at its end.
  [[nodiscard]] std::string AnswerFolder() const;

 private:
  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
  };

  Outcome Lock();
  Outcome MakeSamples() const;
  void RemoveOldAnswers() const;
  [[nodiscard]] const DatabaseSettings* SettingsOf(std::string_view name) const;
  [[nodiscard]] std::string DatabaseFile(std::string_view name) const;

  std::string path_;
  DatabaseSettingsByName settings_;
  std::unique_ptr<sqlite3, Closer> lock_;  // an open transaction, which ends with the process too
};

// Whether a client may name a database so: letters, digits, "_" and "-", at most 64 of them. So a
// name never leads out of the folder.
[[nodiscard]] bool IsDatabaseName(std::string_view name);

}  // namespace qv::standin
