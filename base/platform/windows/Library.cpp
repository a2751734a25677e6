#include <windows.h>

#include "base/platform/Platform.h"

namespace qv::platform {

// What a library needs is looked for beside it first.
void* OpenLibrary(const std::string& path) {
  return ::LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void CloseLibrary(void* library) { ::FreeLibrary(static_cast<HMODULE>(library)); }

void* FindFunction(void* library, const char* name) {
  return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}

}  // namespace qv::platform
