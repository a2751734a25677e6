// The databases that a new data folder starts with.
// The files that a new data folder starts with.
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
// The groups, users and departments, which no client reaches as a database.
[[nodiscard]] const SampleDatabase& SampleDirectory();

// Makes the database at `file`: whole, or not at all.
Outcome CreateSample(const SampleDatabase& sample, const std::string& file);

// Makes the folder of the file store at `folder`: whole, or not at all.
Outcome CreateSampleFiles(const std::string& folder);

}  // namespace qv::standin
