#include <sys/mman.h>
#include <unistd.h>

#include "base/platform/Platform.h"

namespace qv::platform {

void PreferLargePages([[maybe_unused]] void* start, [[maybe_unused]] std::size_t bytes) {
#if defined(MADV_HUGEPAGE)
  // Advice is for whole pages: those that lie in the range.
  static const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  const std::size_t ahead = (page - reinterpret_cast<std::uintptr_t>(start) % page) % page;
  if (bytes <= ahead) return;
  static_cast<void>(
      ::madvise(static_cast<char*>(start) + ahead, (bytes - ahead) / page * page, MADV_HUGEPAGE));
#endif
}

}  // namespace qv::platform
