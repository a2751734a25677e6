// The running program: its files, libraries, memory and clock.
#include <dlfcn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/platform/Platform.h"

namespace qv::platform {

namespace {

// Any object in this module: the loader is asked which file contains its address.
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
  // The loader lists a program under the word that started it, which is a path only if it contains
  // a slash.
  if (known && std::strchr(info.dli_fname, kSeparator) != nullptr) {
    // Links are kept: the files beside the link, not beside its target, configure the library.
    const auto loaded = std::filesystem::absolute(info.dli_fname, error).lexically_normal();
    if (!error && std::filesystem::exists(loaded, error)) return loaded.string();
  }
  return ProgramFile().string();
}

std::string ProgramFolder() {
  const std::filesystem::path program = ProgramFile();
  return program.empty() ? std::string() : (program.parent_path() / "").string();
}

// Binds all symbols at once, so that an incomplete library is refused here and does not end the
// program later.
void* OpenLibrary(const std::string& path) { return ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }

void CloseLibrary(void* library) { ::dlclose(library); }

void* FindFunction(void* library, const char* name) { return ::dlsym(library, name); }

void* FindFunctionBeside(const char* /*library*/, void* neighbour, const char* name) {
  Dl_info home{};
  if (::dladdr(neighbour, &home) == 0) return nullptr;
  // A program is found under no path of its own; its symbols are those that everybody sees.
  void* library = ::dlopen(home.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
  if (library == nullptr) library = ::dlopen(nullptr, RTLD_LAZY);
  if (library == nullptr) return nullptr;
  void* const found = ::dlsym(library, name);
  ::dlclose(library);
  // The search goes on in the libraries that this one needs.
  Dl_info place{};
  const bool is_beside =
      found != nullptr && ::dladdr(found, &place) != 0 && place.dli_fbase == home.dli_fbase;
  return is_beside ? found : nullptr;
}

void PreferLargePages([[maybe_unused]] void* start, [[maybe_unused]] std::size_t bytes) {
#if defined(MADV_HUGEPAGE)
  // The system takes advice for whole pages only: those inside the range.
  static const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  const std::size_t ahead = (page - reinterpret_cast<std::uintptr_t>(start) % page) % page;
  if (bytes <= ahead) return;
  static_cast<void>(
      ::madvise(static_cast<char*>(start) + ahead, (bytes - ahead) / page * page, MADV_HUGEPAGE));
#endif
}

void FillWithRandomBytes(void* bytes, std::size_t count) {
  // Unlike std::random_device, this takes one system call and keeps nothing that a fork would copy.
  if (::getentropy(bytes, count) != 0) {
    throw std::system_error(errno, std::generic_category(), "no random bytes");
  }
}

void* AllocatePages(std::size_t bytes) {
  void* const start =
      ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return start != MAP_FAILED ? start : nullptr;
}

void FreePages(void* start, std::size_t bytes) { ::munmap(start, bytes); }

bool ZeroPages([[maybe_unused]] void* start, [[maybe_unused]] std::size_t bytes) {
#if defined(__linux__)
  // Other systems understand the advice as a hint, after which the bytes may still be there. Here
  // it fails for memory that the program has locked.
  return ::madvise(start, bytes, MADV_DONTNEED) == 0;
#else
  return false;
#endif
}

unsigned long ProcessNumber() { return static_cast<unsigned long>(::getpid()); }

// A program is not found by its path, and is never unloaded.
void KeepThisModule() {
  Dl_info info{};
  if (::dladdr(&kInsideThisModule, &info) == 0) return;
  void* const module = ::dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
  if (module != nullptr) ::dlclose(module);
}

std::uint64_t PhysicalMemory() {
  const long pages = ::sysconf(_SC_PHYS_PAGES);
  const long page = ::sysconf(_SC_PAGESIZE);
  if (pages <= 0 || page <= 0) return 0;
  return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(page);
}

std::optional<std::tm> LocalTime(std::time_t time) {
  ::tzset();  // Unlike localtime, localtime_r need not notice that TZ has changed.
  std::tm local{};
  if (::localtime_r(&time, &local) == nullptr) return std::nullopt;
  return local;
}

}  // namespace qv::platform
