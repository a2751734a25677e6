#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// List, make and remove folders of the server's store. Each gives the exit status; `err` hears what
// went wrong.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ListFolder& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const MakeFolders& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const RemoveFolders& command,
                      std::ostream& out, std::ostream& err);

}  // namespace qv::tool
