// The commands that change data and print no rows.
#pragma once

#include <iosfwd>

#include "CommandLine.h"

namespace qv {

// Both read `in` when their text is to come from there, say on `err` how it went, and give the exit
// status.
[[nodiscard]] int RunExec(const Connection& connection, const ExecOptions& options,
                          std::istream& in, std::ostream& err);
[[nodiscard]] int RunBatch(const Connection& connection, const BatchOptions& options,
                           std::istream& in, std::ostream& err);

}  // namespace qv
