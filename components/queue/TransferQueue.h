// Files that wait to be moved in one direction, and the runs that move them.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "RemoteStore.h"
#include "RunMeter.h"

namespace qv::components {

enum class TransferKind { kUpload, kDownload, kCopy };

struct RunOutcome {
  // That of the first file that did not succeed.
  QvTransferResult result = QvTransfer_Success;
  // How many files of the queue have succeeded, in this run or before.
  long count = 0;
};

// One thread. Of a pair, the first path is where the file comes from and the second where it goes.
// The stores are the caller's; null when there is none.
class TransferQueue {
 public:
  explicit TransferQueue(TransferKind kind) : kind_(kind) {}

  // After a run in which everything succeeded, it begins a new queue. A pair that cannot be moved
  // is queued as well, since whoever lists the queue has it too: its runs fail.
  QvTransferResult Add(const std::string& first, const std::string& second);
  // Moves the files that have not succeeded yet. A file whose transfer breaks is tried up to
  // `option` times more (0 to 100), and goes on where it stopped, in a later run too. A server that
  // cannot be had at all ends the run.
  RunOutcome Run(RemoteStore* store, long option);
  // Whether all files of the last run that came from there succeeded.
  [[nodiscard]] bool HasSucceeded(const std::string& first) const;
  // Forgets everything, and cleans up what broken tries left.
  void Empty(RemoteStore* store);

 private:
  struct Pair {
    std::string first;
    std::string second;
    Resume resume;
    bool has_succeeded = false;
  };

  QvTransferResult Move(RemoteStore* store, Pair& pair, long tries_left, RunMeter& meter) const;
  QvTransferResult TryOnce(RemoteStore& store, Pair& pair, RunMeter& meter) const;

  TransferKind kind_;
  std::vector<Pair> pairs_;
  // By first path, of the last run.
  std::unordered_map<std::string, bool> outcomes_;
  bool is_done_ = false;
};

}  // namespace qv::components
