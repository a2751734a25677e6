#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Show the directory and the server itself, and write to its log. Each gives the exit status; `err`
// hears what went wrong.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ListGroups& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const ListUsers& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const WriteLog& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const ShowServer& command,
                      std::ostream& out, std::ostream& err);

}  // namespace qv::tool
