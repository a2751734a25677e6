#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv {

// Says whether the server answers, and gives the exit status.
[[nodiscard]] int RunPing(const Connection& connection, std::ostream& out, std::ostream& err);

}  // namespace qv
