// The databases and files of a new data folder.
#pragma once

#include <span>
#include <string>

#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

struct SampleDatabase {
  const char* name;
  const char* script;
};

[[nodiscard]] std::span<const SampleDatabase> SampleDatabases();
// Returns the database of groups, users and departments, which clients cannot open by name.
[[nodiscard]] const SampleDatabase& SampleDirectory();

// Creates the database at `file`, entirely or not at all.
Outcome CreateSample(const SampleDatabase& sample, const std::string& file);

// Creates the folder of the file store at `folder`, entirely or not at all.
Outcome CreateSampleFiles(const std::string& folder);

}  // namespace qv::standin
