#include "tools/qvcall/system/SystemPlaces.h"

#include <cstdlib>

#include "tools/qvcall/system/LocalPath.h"

namespace qv::tool {

// Absolute, or it would depend on where the user stands.
std::string CachesOfUser() {
  const char* const value = std::getenv("LOCALAPPDATA");
  const std::string caches = value != nullptr ? value : "";
  return PathFromNarrow(caches).is_absolute() ? caches : "";
}

std::string_view NoCachesOfUser() { return "LOCALAPPDATA does not name"; }

std::string_view AdviceOnMissing(Service service) {
  return service == Service::kFtp
             ? "QvCoFtp.dll is missing beside qvcall, or could not be registered"
             : "no component for cloud stores is registered on this machine";
}

}  // namespace qv::tool
