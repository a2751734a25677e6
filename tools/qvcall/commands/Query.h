#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Runs one query or procedure call and writes its rows to `out`; remarks and errors go to `err`.
// `in` is read when the statement is to come from there. Gives the exit status; whether `out` could
// take everything is told by `out` itself.
[[nodiscard]] int RunQuery(const ConnectionOptions& connection, const QueryOptions& options,
                           std::istream& in, std::ostream& out, std::ostream& err);

}  // namespace qv::tool
