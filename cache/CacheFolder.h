// A folder of cached answers with its index.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "CacheIndex.h"

namespace qv {

// The answers are files with names of the folder's own making; other files are left alone. Files
// are made under a temporary name, flushed, and, while no other program can change the index,
// renamed and entered. So every file with a final name and without an entry is a left-over. All
// calls may come from several threads and programs at once.
class CacheFolder {
 public:
  // Opens or creates the folder, and sweeps left-overs out of it. Null when it cannot be had.
  [[nodiscard]] static std::unique_ptr<CacheFolder> Open(const std::string& path);

  // As QueryCache has them.
  [[nodiscard]] std::optional<std::string> Find(const std::string& key,
                                                const std::string& target_folder);
  [[nodiscard]] bool Store(const std::string& key, const std::string& file, int flag);
  [[nodiscard]] bool Clear();

 private:
  enum class TakeOutResult { kDone, kGone, kDamaged, kFailed };

  CacheFolder(std::string path, std::unique_ptr<CacheIndex> index);
  [[nodiscard]] std::optional<CacheIndex::Entry> LookUp(const std::string& key);
  [[nodiscard]] TakeOutResult TakeOut(const CacheIndex::Entry& entry, const std::string& target);
  void Discard(const std::string& key, const CacheIndex::Entry& entry);
  [[nodiscard]] bool Enter(const std::string& key, const CacheIndex::Entry& entry,
                           const std::string& temporary);
  // Removes an answer's file; nothing that is not one.
  void RemoveAnswer(const std::string& name);
  [[nodiscard]] bool Sweep();

  const std::string path_;  // with a separator at its end
  std::mutex mutex_;        // guards the index; never held while a file is copied
  const std::unique_ptr<CacheIndex> index_;
};

}  // namespace qv
