// Names of columns that can stand as names of attributes.
#pragma once

#include <string>
#include <vector>

#include "tools/qvstandin/databases/Database.h"

namespace qv::standin {

// One name for each column, in order, all different and none empty.
[[nodiscard]] std::vector<std::string> HarmlessNames(const std::vector<Column>& columns);

}  // namespace qv::standin
