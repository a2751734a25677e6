#include "base/platform/Platform.h"

namespace qv::platform {

// Large pages here are a privilege, not a matter of advice.
void PreferLargePages(void*, std::size_t) {}

}  // namespace qv::platform
