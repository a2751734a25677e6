// Which code of a request means which command.
#pragma once

#include "Command.h"

namespace qv::standin {

// Carries out the request and gives the reply. A code that is not known is a failure.
[[nodiscard]] Reply Answer(Services& services, Request request);

// Whether a file may come along with the command.
[[nodiscard]] bool TakesFile(std::uint32_t command);

}  // namespace qv::standin
