// A folder of cached answers with its index.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "CacheIndex.h"

namespace qv {

// The answers are files with names that the folder makes up; other files are left alone. A file is
// written under a temporary name, and then renamed and entered while no other program can change
// the index. So a file with a final name and without an entry is a left-over. Nothing waits for the
// disk: after a power cut, the newest entries may be missing, or name a file that is missing or
// lacks bytes, which its name tells. All calls may come from several threads and programs at once.
class CacheFolder {
 public:
  // Opens or creates the folder and removes left-overs. Returns null on failure.
  [[nodiscard]] static std::unique_ptr<CacheFolder> Open(const std::string& path);

  // These do what QueryCache declares.
  [[nodiscard]] std::optional<std::string> Find(const std::string& key,
                                                const std::string& target_folder);
  [[nodiscard]] std::optional<std::int64_t> StoredAt(const std::string& key);
  [[nodiscard]] bool Store(const std::string& key, const std::string& file, int flag);
  [[nodiscard]] bool Take(const std::string& key, const std::string& file, int flag);
  [[nodiscard]] bool Clear();

 private:
  enum class TakeOutResult { kDone, kGone, kDamaged, kFailed };

  CacheFolder(std::string path, std::unique_ptr<CacheIndex> index);
  [[nodiscard]] std::optional<CacheIndex::Entry> LookUp(const std::string& key);
  [[nodiscard]] TakeOutResult TakeOut(const CacheIndex::Entry& entry, const std::string& target);
  void Discard(const std::string& key, const CacheIndex::Entry& entry);
  // Moves a finished file to its place in the folder.
  using Move = std::function<bool(const std::string& place)>;
  [[nodiscard]] bool Enter(const std::string& key, const CacheIndex::Entry& entry,
                           const Move& move);
  // Leaves the file behind if that fails after it was moved.
  [[nodiscard]] bool TryToEnter(const std::string& key, const CacheIndex::Entry& entry,
                                const Move& move);
  // Removes a file if its name is an answer's.
  void RemoveAnswer(const std::string& name);
  [[nodiscard]] bool Sweep();

  const std::string path_;  // with a separator at its end
  std::mutex mutex_;        // guards the index; never held while a file is copied
  const std::unique_ptr<CacheIndex> index_;
  // Whether files can be moved here; false once one could not, as from another file system.
  std::atomic<bool> may_move_ = true;
};

}  // namespace qv
