#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Send, fetch and show files that the server keeps under a number and a name. What was moved is
// compared by its checksum, where the server has one; a local file that was there before only gives
// way to a good one. Each gives the exit status; `err` hears how it goes.
[[nodiscard]] int Run(const ConnectionOptions& connection, const PutById& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const GetById& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const ShowById& command,
                      std::ostream& out, std::ostream& err);

}  // namespace qv::tool
