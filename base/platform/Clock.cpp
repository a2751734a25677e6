#include <ctime>

#include "Platform.h"

namespace qv::platform {

std::int64_t UnixTime() { return static_cast<std::int64_t>(std::time(nullptr)); }

}  // namespace qv::platform
