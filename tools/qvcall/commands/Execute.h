#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Runs one statement that gives no rows. `in` is read when the statement is to come from there;
// `err` hears how it went. Gives the exit status.
[[nodiscard]] int RunExec(const ConnectionOptions& connection, const ExecOptions& options,
                          std::istream& in, std::ostream& err);

}  // namespace qv::tool
