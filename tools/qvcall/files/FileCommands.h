#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv {

// Show, move, copy and remove what is in the server's store. Each gives the exit status; `err`
// hears what went wrong.
[[nodiscard]] int Run(const Connection& connection, const ShowPath& command, std::ostream& out,
                      std::ostream& err);
[[nodiscard]] int Run(const Connection& connection, const MovePath& command, std::ostream& out,
                      std::ostream& err);
[[nodiscard]] int Run(const Connection& connection, const CopyFile& command, std::ostream& out,
                      std::ostream& err);
[[nodiscard]] int Run(const Connection& connection, const RemoveFiles& command, std::ostream& out,
                      std::ostream& err);

}  // namespace qv
