#include "QueryCache.h"

#include "CacheFolder.h"

namespace qv {

QueryCache::QueryCache() = default;

QueryCache::~QueryCache() = default;

bool QueryCache::SetPath(const std::string& folder) {
  std::shared_ptr<CacheFolder> opened;
  if (!folder.empty()) opened = CacheFolder::Open(folder);
  const bool had = folder.empty() || opened != nullptr;
  const std::lock_guard lock(mutex_);
  folder_.swap(opened);
  return had;
}

std::optional<std::string> QueryCache::Find(const std::string& key,
                                            const std::string& target_folder) const {
  const std::shared_ptr<CacheFolder> folder = Folder();
  if (folder == nullptr) return std::nullopt;
  return folder->Find(key, target_folder);
}

std::optional<std::int64_t> QueryCache::StoredAt(const std::string& key) const {
  const std::shared_ptr<CacheFolder> folder = Folder();
  if (folder == nullptr) return std::nullopt;
  return folder->StoredAt(key);
}

bool QueryCache::Store(const std::string& key, const std::string& file, int flag) {
  const std::shared_ptr<CacheFolder> folder = Folder();
  return folder != nullptr && folder->Store(key, file, flag);
}

bool QueryCache::Take(const std::string& key, const std::string& file, int flag) {
  const std::shared_ptr<CacheFolder> folder = Folder();
  return folder != nullptr && folder->Take(key, file, flag);
}

bool QueryCache::Clear() {
  const std::shared_ptr<CacheFolder> folder = Folder();
  return folder != nullptr && folder->Clear();
}

void QueryCache::Reset() {
  SetPath("");
  SetState(cache_state::kOnline);
}

std::shared_ptr<CacheFolder> QueryCache::Folder() const {
  const std::lock_guard lock(mutex_);
  return folder_;
}

}  // namespace qv
