#include <dlfcn.h>

#include <filesystem>
#include <system_error>

#include "../Platform.h"

namespace qv::platform {

namespace {

// Any object inside this module will do to ask the loader which file it came from.
const char kInsideThisModule = 0;

}  // namespace

std::string ModuleFile() {
  Dl_info info{};
  const bool known = ::dladdr(&kInsideThisModule, &info) != 0 && info.dli_fname != nullptr;
  std::error_code error;
  const auto loaded = std::filesystem::canonical(known ? info.dli_fname : "/proc/self/exe", error);
  if (!error) return loaded.string();
  // A program is listed under the words it was started with, which need not be a path from here.
  return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

}  // namespace qv::platform
