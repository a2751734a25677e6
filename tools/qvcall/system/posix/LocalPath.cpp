#include "tools/qvcall/system/LocalPath.h"

#include <system_error>

namespace qv::tool {

namespace fs = std::filesystem;

fs::path PathFromNarrow(const std::string& path) { return path; }

std::optional<std::string> NarrowFromPath(const fs::path& path) { return path.string(); }

std::string ShownPath(const fs::path& path) { return path.string(); }

bool IsLink(const fs::path& path) {
  std::error_code error;
  return fs::is_symlink(path, error);
}

bool KeepsName(const std::string& /*name*/) { return true; }

std::string PathKey(const std::string& path) { return path; }

void GiveRightsOf(const fs::path& like, const fs::path& file) {
  std::error_code error;
  const fs::perms usual = fs::status(like, error).permissions();
  if (usual != fs::perms::unknown) fs::permissions(file, usual, error);
}

}  // namespace qv::tool
