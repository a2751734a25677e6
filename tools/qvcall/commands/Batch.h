#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Runs the statements of a file, all of them or none, and shows on a terminal how far it is. `in`
// is read when they are to come from there; `err` hears how it went. Gives the exit status.
[[nodiscard]] int RunBatch(const ConnectionOptions& connection, const BatchOptions& options,
                           std::istream& in, std::ostream& err);

}  // namespace qv::tool
