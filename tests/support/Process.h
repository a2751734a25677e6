// Programs that tests start.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace qv {

// Starts a program, found on the path, in `folder`, or in this program's when that is empty. What
// it prints, errors too when `with_errors`, goes to `output`, which must close on exec. -1 when it
// cannot be started.
pid_t Spawn(std::vector<std::string> words, int output, bool with_errors,
            const std::string& folder = "");

}  // namespace qv
