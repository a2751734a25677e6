// Until the library has its queues here as well.
#include "cli/QueueCommands.h"

#include <ostream>

namespace qv {

int Run(const Connection& /*connection*/, const QueueCommand& /*command*/, std::istream& /*in*/,
        std::ostream& err) {
  err << "qvcall: ftp and cloud are not part of this build\n";
  return kFailed;
}

}  // namespace qv
