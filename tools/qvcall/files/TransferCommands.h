#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Send files to the server's store, and fetch them. A file that fails does not keep the next from
// being moved, and leaves what was there under its name as it was. Each gives the exit status;
// `err` hears how it goes.
[[nodiscard]] int Run(const ConnectionOptions& connection, const PutFiles& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const GetFiles& command,
                      std::ostream& out, std::ostream& err);

}  // namespace qv::tool
