// What the owner of a data folder says about its databases, in databases.json.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

struct DatabaseSettings {
  std::string odbc;             // where its tables are; stays here. Empty: in a file of the folder
  std::string connection_text;  // what clients get that ask for one; empty: none
};

using DatabaseSettingsByName = std::map<std::string, DatabaseSettings, std::less<>>;

// Reads
//   {"DESIGNDB": {"odbc": "Driver=...;Server=...", "connection_text": "..."}, ...}
// where both texts may be missing. A file that is not there says nothing. One that others than its
// owner can read or write is refused, since it holds passwords. The text of a failure names the
// file and the place, and shows nothing of what it says there.
Outcome ReadDatabaseSettings(const std::string& file, DatabaseSettingsByName& settings);

// Whether a client may name a database so: letters, digits, "_" and "-", at most 64 of them. So a
// name never leads out of the folder.
[[nodiscard]] bool IsDatabaseName(std::string_view name);

}  // namespace qv::standin
