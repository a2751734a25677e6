#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Moves files between this machine and a file server or a cloud store, in one queue. What fails is
// told on `err`, and to the log of the platform's server when the connection names one. Gives the
// exit status. The password may come from `in`.
[[nodiscard]] int Run(const ConnectionOptions& connection, const QueueCommand& command,
                      std::istream& in, std::ostream& err);

}  // namespace qv::tool
