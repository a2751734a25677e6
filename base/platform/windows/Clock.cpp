#include "base/platform/Platform.h"

namespace qv::platform {

std::optional<std::tm> LocalTime(std::time_t time) {
  std::tm local{};
  if (::localtime_s(&local, &time) != 0) return std::nullopt;
  return local;
}

}  // namespace qv::platform
