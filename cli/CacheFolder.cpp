#include "CacheFolder.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace qv {
namespace {

// A folder that an environment variable names; relative ones would depend on where the user stands.
std::filesystem::path FolderFrom(const char* variable) {
  const char* value = std::getenv(variable);
  const std::filesystem::path path = value != nullptr ? value : "";
  return path.is_absolute() ? path : std::filesystem::path();
}

std::filesystem::path CachesOfUser() {
  if (auto caches = FolderFrom("XDG_CACHE_HOME"); !caches.empty()) return caches;
  if (auto home = FolderFrom("HOME"); !home.empty()) return home / ".cache";
  return FolderFrom("LOCALAPPDATA");
}

}  // namespace

std::optional<std::string> DefaultCacheFolder() {
  const std::filesystem::path caches = CachesOfUser();
  if (caches.empty()) return std::nullopt;
  std::error_code ignored;  // the cache itself says when it cannot use the folder
  std::filesystem::create_directories(caches, ignored);
  return (caches / "qvcall").string();
}

}  // namespace qv
