#include <windows.h>

#include <vector>

#include "base/platform/Platform.h"

// Where this module was loaded to, which is its handle; the linker knows it.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace qv::platform {

namespace {

std::string FileOf(HMODULE module) {
  std::vector<char> path(MAX_PATH);
  for (;; path.resize(path.size() * 2)) {
    const DWORD length = ::GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size()));
    // A length of all there is room for says that it was cut.
    if (length < path.size()) return std::string(path.data(), length);
  }
}

}  // namespace

std::string ModuleFile() { return FileOf(reinterpret_cast<HMODULE>(&__ImageBase)); }

std::string ProgramFolder() { return FolderOf(FileOf(nullptr)); }

}  // namespace qv::platform
