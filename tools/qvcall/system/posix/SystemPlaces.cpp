#include "tools/qvcall/system/SystemPlaces.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace qv::tool {
namespace {

// Returns a folder that the environment names. A relative one is ignored, because it would depend
// on the current folder.
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

void* FindLoadedFunction(const char* name) {
  static void* const program = dlopen(nullptr, RTLD_LAZY);
  return program != nullptr ? dlsym(program, name) : nullptr;
}

void* FindComponentFunction(const char* component, const char* name) {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return nullptr;
  const auto file = program.parent_path() / ("lib" + std::string(component) + ".so");
  void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  return library != nullptr ? dlsym(library, name) : nullptr;
}

}  // namespace qv::tool
