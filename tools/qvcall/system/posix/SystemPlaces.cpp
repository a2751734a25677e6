#include "tools/qvcall/system/SystemPlaces.h"

#include <cstdlib>

namespace qv::tool {
namespace {

// A folder that the environment names; a relative one would depend on where the user stands.
std::string FolderFrom(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value == '/' ? value : "";
}

}  // namespace

std::string CachesOfUser() {
  if (std::string caches = FolderFrom("XDG_CACHE_HOME"); !caches.empty()) return caches;
  const std::string home = FolderFrom("HOME");
  return home.empty() ? home : home + "/.cache";
}

std::string_view NoCachesOfUser() { return "neither XDG_CACHE_HOME nor HOME names"; }

std::string_view AdviceOnMissing(Service service) {
  return service == Service::kFtp ? "libQvCoFtp.so is missing beside qvcall"
                                  : "libQvCoCSC.so is missing beside qvcall";
}

}  // namespace qv::tool
