// The query-result cache: stored answers, for reuse and for work without a network.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "qvnetcall/ResultCodes.h"

namespace qv {

class CacheFolder;

// The format of a stored file.
enum CacheFlag { kCacheGzip = 0, kCachePlain = 1 };

// Answers are files in one folder, with an index beside them ("qvdbcache.db3"), all readable by
// their owner only. Keys are arbitrary bytes; keys over 64 MiB are not stored.
//
// Every call may come from several threads at once, and several programs may share a folder. If a
// program dies at any moment, the cache holds the earlier answer or the new one. If the machine
// stops, answers of the last moments may be missing, and what is there is whole. A call waits for
// an index that another program keeps busy at most half a second each time, and two seconds in all;
// then the answer is not found or not stored. Threads wait for each other's calls. Nothing throws,
// except std::bad_alloc.
class QueryCache {
 public:
  QueryCache();
  ~QueryCache();
  QueryCache(const QueryCache&) = delete;
  QueryCache& operator=(const QueryCache&) = delete;

  // Uses the cache in `folder`, created if necessary, instead of the previous one. An empty text
  // switches the cache off, which is the initial state. Returns false and switches the cache off if
  // the folder cannot be used. An index file that is damaged or not a database is moved aside, and
  // the cache starts empty. If the index file is another program's database, a link or not a
  // regular file, it is left alone and the call returns false.
  bool SetPath(const std::string& folder);

  // Makes a private, uncompressed copy of the answer to `key` in `target_folder` and returns its
  // path; the caller deletes the copy. Returns nothing, and leaves no part of a copy, if there is
  // no answer, if it turns out to be damaged (it is then removed), or if the copy cannot be made.
  [[nodiscard]] std::optional<std::string> Find(const std::string& key,
                                                const std::string& target_folder) const;

  // Returns when the answer to `key` was stored, in seconds since 1970 UTC, or nothing if there is
  // no answer.
  [[nodiscard]] std::optional<std::int64_t> StoredAt(const std::string& key) const;

  // Stores a copy of `file`, whose format is `flag` (a CacheFlag), under `key`, replacing the
  // earlier one. Returns false on failure and then keeps the earlier one.
  bool Store(const std::string& key, const std::string& file, int flag);

  // Does the same with a private file that nobody else uses: the cache may move it instead of
  // making a copy, and then there is no file any more.
  bool Take(const std::string& key, const std::string& file, int flag);

  // Whether there is a folder, so that answers can be stored.
  [[nodiscard]] bool IsOn() const { return Folder() != nullptr; }

  // Removes all answers. Returns false if the cache is off or some cannot be removed.
  bool Clear();

  // One of cache_state. It is only stored here and does not affect the calls above.
  [[nodiscard]] int State() const { return state_; }
  void SetState(int state) { state_ = state; }

  // Restores the initial state: off and online.
  void Reset();

 private:
  [[nodiscard]] std::shared_ptr<CacheFolder> Folder() const;

  mutable std::mutex mutex_;  // guards the pointer; running calls keep the folder open
  std::shared_ptr<CacheFolder> folder_;
  std::atomic<int> state_ = cache_state::kOnline;
};

}  // namespace qv
