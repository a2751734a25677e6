#include "CacheFolder.h"

#include "tools/qvcall/system/LocalFiles.h"
#include "tools/qvcall/system/SystemPlaces.h"

namespace qv::tool {

std::optional<std::string> DefaultCacheFolder() {
  const std::string caches = CachesOfUser();
  if (caches.empty()) return std::nullopt;
  MakeLocalFolders(caches);  // the cache itself says when it cannot use the folder
  return JoinLocal(caches, "qvcall");
}

}  // namespace qv::tool
