// The running program: its files, libraries, memory and clock.
#include <windows.h>
// In this order.
#include <ntsecapi.h>

#include <stdexcept>
#include <vector>

#include "base/platform/Platform.h"

// The address at which this module was loaded, which is also its handle. The linker defines it.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace qv::platform {

namespace {

std::string FileOf(HMODULE module) {
  std::vector<char> path(MAX_PATH);
  for (;; path.resize(path.size() * 2)) {
    const DWORD length = ::GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size()));
    // A length equal to the buffer's size means that the path was truncated.
    if (length < path.size()) return std::string(path.data(), length);
  }
}

}  // namespace

std::string ModuleFile() { return FileOf(reinterpret_cast<HMODULE>(&__ImageBase)); }

std::string ProgramFolder() { return FolderOf(FileOf(nullptr)); }

// Dependencies of a library are first searched for in its own folder.
void* OpenLibrary(const std::string& path) {
  return ::LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void CloseLibrary(void* library) { ::FreeLibrary(static_cast<HMODULE>(library)); }

void* FindFunction(void* library, const char* name) {
  return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}

// The address of an imported function may be that of a jump in this module.
void* FindFunctionBeside(const char* library, void* /*neighbour*/, const char* name) {
  const HMODULE module = ::GetModuleHandleA((std::string(library) + ".dll").c_str());
  return module != nullptr ? reinterpret_cast<void*>(::GetProcAddress(module, name)) : nullptr;
}

// Windows has no such advice: large pages need a privilege.
void PreferLargePages(void*, std::size_t) {}

void FillWithRandomBytes(void* bytes, std::size_t count) {
  if (RtlGenRandom(bytes, static_cast<ULONG>(count)) == FALSE) {
    throw std::runtime_error("no random bytes");
  }
}

void* AllocatePages(std::size_t bytes) {
  return ::VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void FreePages(void* start, std::size_t) { ::VirtualFree(start, 0, MEM_RELEASE); }

bool ZeroPages(void* start, std::size_t bytes) {
  return ::VirtualFree(start, bytes, MEM_DECOMMIT) != FALSE &&
         ::VirtualAlloc(start, bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

unsigned long ProcessNumber() { return ::GetCurrentProcessId(); }

void KeepThisModule() {
  HMODULE module = nullptr;
  static_cast<void>(
      ::GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                           reinterpret_cast<LPCSTR>(&__ImageBase), &module));
}

std::uint64_t PhysicalMemory() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  return ::GlobalMemoryStatusEx(&status) != 0 ? status.ullTotalPhys : 0;
}

std::optional<std::tm> LocalTime(std::time_t time) {
  std::tm local{};
  if (::localtime_s(&local, &time) != 0) return std::nullopt;
  return local;
}

}  // namespace qv::platform
