#include <dlfcn.h>

#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/platform/Platform.h"

namespace qv::platform {

namespace {

// Any object inside this module will do to ask the loader which file it came from.
const char kInsideThisModule = 0;

std::filesystem::path ProgramFile() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

}  // namespace

std::string ModuleFile() {
  Dl_info info{};
  const bool known = ::dladdr(&kInsideThisModule, &info) != 0 && info.dli_fname != nullptr;
  std::error_code error;
  // A program is listed under the word that it was started with; only with a slash is that a path.
  if (known && std::strchr(info.dli_fname, kSeparator) != nullptr) {
    // A link stays: what lies beside the link, not beside its target, configures the library.
    const auto loaded = std::filesystem::absolute(info.dli_fname, error).lexically_normal();
    if (!error && std::filesystem::exists(loaded, error)) return loaded.string();
  }
  return ProgramFile().string();
}

std::string ProgramFolder() {
  const std::filesystem::path program = ProgramFile();
  return program.empty() ? std::string() : (program.parent_path() / "").string();
}

}  // namespace qv::platform
