// The files that a new data folder starts with.
#pragma once

#include <string>

#include "tools/qvstandin/common/ErrorCode.h"

namespace qv::standin {

// Makes the folder of the file store at `folder`: whole, or not at all.
Outcome CreateSampleFiles(const std::string& folder);

}  // namespace qv::standin
