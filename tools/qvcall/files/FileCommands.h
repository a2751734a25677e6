#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Show, move, copy and remove what is in the server's store. Each gives the exit status; `err`
// hears what went wrong.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ShowPath& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const MovePath& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const CopyFile& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const RemoveFiles& command,
                      std::ostream& out, std::ostream& err);

}  // namespace qv::tool
