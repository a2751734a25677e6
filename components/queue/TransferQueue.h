// A queue of files that are moved in one direction.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "RemoteStore.h"
#include "RunMeter.h"

namespace qv::components {

enum class TransferKind { kUpload, kDownload, kCopy };

struct RunOutcome {
  // The result of the first file that failed.
  QvTransferResult result = QvTransfer_Success;
  // The number of files that have succeeded, in this run or an earlier one.
  long count = 0;
};

// Use from one thread. The first path of a pair is the source and the second the target. The caller
// owns the stores; null means that there is none.
class TransferQueue {
 public:
  explicit TransferQueue(TransferKind kind) : kind_(kind) {}

  // Starts a new queue if everything succeeded in the last run. A pair with an invalid path is
  // queued as well, because the host counts it too; it fails in every run.
  QvTransferResult Add(const std::string& first, const std::string& second);
  // Moves the files that have not succeeded yet. An interrupted transfer is tried again up to
  // `option` times (0 to 100) and resumes where it stopped, in a later run as well. A server that
  // cannot be reached ends the run.
  RunOutcome Run(RemoteStore* store, long option);
  // Returns true if all files of the last run with this source succeeded.
  [[nodiscard]] bool HasSucceeded(const std::string& first) const;
  // Clears the queue and removes what failed attempts left.
  void Empty(RemoteStore* store);

 private:
  struct Pair {
    std::string first;
    std::string second;
    Resume resume;
    bool has_succeeded = false;
  };

  QvTransferResult Move(RemoteStore* store, Pair& pair, long option, RunMeter& meter) const;
  QvTransferResult TryOnce(RemoteStore& store, Pair& pair, RunMeter& meter) const;

  TransferKind kind_;
  std::vector<Pair> pairs_;
  // Results of the last run by source path.
  std::unordered_map<std::string, bool> outcomes_;
  bool is_done_ = false;
};

}  // namespace qv::components
