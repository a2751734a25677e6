#include "tools/qvcall/system/Startup.h"

#include <csignal>
#include <iostream>

namespace qv::tool {

// A reader that went away shall be a failed write, so that the tool ends in order; so shall a limit
// on the size of files.
Startup::Startup() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  std::ios::sync_with_stdio(false);
}

Startup::~Startup() = default;

bool Startup::HasWholeArguments() { return true; }

}  // namespace qv::tool
