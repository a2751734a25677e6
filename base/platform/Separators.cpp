#include "Platform.h"

namespace qv::platform {

std::string FolderOf(const std::string& path) { return path.substr(0, FolderLength(path)); }

std::string WithSeparator(std::string folder) {
  const bool ends = !folder.empty() && FolderLength(folder) == folder.size();
  if (!ends || folder.back() != kSeparator) folder += kSeparator;
  return folder;
}

}  // namespace qv::platform
