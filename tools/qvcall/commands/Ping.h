#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Says whether the server answers, and gives the exit status.
[[nodiscard]] int RunPing(const ConnectionOptions& connection, std::ostream& out,
                          std::ostream& err);

}  // namespace qv::tool
