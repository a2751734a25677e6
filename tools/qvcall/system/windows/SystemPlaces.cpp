#include "tools/qvcall/system/SystemPlaces.h"

#include <windows.h>
// After windows.h, whose types it uses.
#include <psapi.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "tools/qvcall/system/LocalPath.h"

namespace qv::tool {

// A relative folder is ignored, because it would depend on the current folder.
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

void* FindLoadedFunction(const char* name) {
  std::array<HMODULE, 256> modules{};  // far more than this program loads
  DWORD bytes = 0;
  const BOOL listed =
      ::K32EnumProcessModules(::GetCurrentProcess(), modules.data(), sizeof modules, &bytes);
  if (listed == FALSE) return nullptr;
  const std::size_t count = std::min<std::size_t>(bytes / sizeof(HMODULE), modules.size());
  for (std::size_t i = 0; i < count; ++i) {
    if (const FARPROC found = ::GetProcAddress(modules[i], name)) {
      return reinterpret_cast<void*>(found);
    }
  }
  return nullptr;
}

// Components are COM classes here and export no functions beyond their contract.
void* FindComponentFunction(const char* /*component*/, const char* /*name*/) { return nullptr; }

}  // namespace qv::tool
