// The query-result cache: answers kept per query text, for reuse and for work without a network.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "qvnetcall/ResultCodes.h"

namespace qv {

class CacheFolder;

// How a stored file is packed.
enum CacheFlag { kCacheGzip = 0, kCachePlain = 1 };

// Answers live as files in one folder, with an index beside them ("qvdbcache.db3"), both readable
// by their owner only. Keys are bytes of any content; those over 64 MiB are not kept.
//
// Every call may come from several threads at once, and several programs may share a folder. A
// program that dies, or a machine that stops, at any moment leaves the earlier answer or the new
// one. An index that another program keeps busy is waited for, half a second at most each time
// and two seconds at most in one call; then the answer is not found or not kept. Threads wait for
// each other's calls. Nothing throws but a lack of memory.
class QueryCache {
 public:
  QueryCache();
  ~QueryCache();
  QueryCache(const QueryCache&) = delete;
  QueryCache& operator=(const QueryCache&) = delete;

  // Uses the cache in `folder`, which is created if need be, instead of the one before; an empty
  // text switches the cache off, as it is at first. False when the folder cannot be had; the cache
  // is off then. An index file that is damaged or no database is moved aside, and the cache begins
  // empty; one that is another program's database, a link or no plain file is left alone, and
  // false returned.
  bool SetPath(const std::string& folder);

  // Makes a private, plain copy of the answer kept under `key` in `target_folder`, for the caller
  // to read and delete, and gives its path. Nothing when there is none, when it turns out to be
  // damaged (it is forgotten then) or when the copy cannot be made; no part of it stays.
  [[nodiscard]] std::optional<std::string> Find(const std::string& key,
                                                const std::string& target_folder) const;

  // Keeps a copy of `file`, packed as `flag` (of CacheFlag) says, under `key` in place of the
  // earlier one. False when it cannot be kept; the earlier one stays then.
  bool Store(const std::string& key, const std::string& file, int flag);

  // Forgets all answers. False when the cache is off, or when they cannot all be forgotten.
  bool Clear();

  // One of cache_state; the word is kept here, but is no concern of the calls above.
  [[nodiscard]] int State() const { return state_; }
  void SetState(int state) { state_ = state; }

  // Off and online, as at first.
  void Reset();

 private:
  [[nodiscard]] std::shared_ptr<CacheFolder> Folder() const;

  mutable std::mutex mutex_;  // guards the pointer; calls under way keep the folder open
  std::shared_ptr<CacheFolder> folder_;
  std::atomic<int> state_ = cache_state::kOnline;
};

}  // namespace qv
