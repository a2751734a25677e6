// The settings of databases that the owner of a data folder makes in databases.json.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

struct DatabaseSettings {
  std::string odbc;             // connects the server to the tables; empty: a file of the folder
  std::string connection_text;  // sent to clients that ask for it; empty: none
};

using DatabaseSettingsByName = std::map<std::string, DatabaseSettings, std::less<>>;

// Reads
//   {"DESIGNDB": {"odbc": "Driver=...;Server=...", "connection_text": "..."}, ...}
// where both texts are optional. A missing file means no settings. A file that anybody but its
// owner can read or write is refused, since it may hold passwords. The text of a failure names the
// file and the place but quotes nothing of the content.
Outcome ReadDatabaseSettings(const std::string& file, DatabaseSettingsByName& settings);

// Returns whether this is a valid name of a database: 1 to 64 letters, digits, "_" and "-". Such a
// name cannot lead out of the folder.
[[nodiscard]] bool IsDatabaseName(std::string_view name);

}  // namespace qv::standin
