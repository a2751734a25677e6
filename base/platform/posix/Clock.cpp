#include "base/platform/Platform.h"

namespace qv::platform {

std::optional<std::tm> LocalTime(std::time_t time) {
  ::tzset();  // Unlike localtime, localtime_r need not notice that TZ has changed.
  std::tm local{};
  if (::localtime_r(&time, &local) == nullptr) return std::nullopt;
  return local;
}

}  // namespace qv::platform
