#include "tools/qvcall/system/LoadedFunction.h"

#include <dlfcn.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace qv::tool {

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
