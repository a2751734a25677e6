// Which transfers are tried again, how often and after which pause, and which failures end a run.
#pragma once

#include <chrono>

#include "qvnetcall/transfer/ResultCodes.h"

namespace qv::components {

// Returns true if every other file would fail in the same way.
[[nodiscard]] bool EndsRun(QvTransferResult result);

// The further tries of one file.
class Retries {
 public:
  // `option` is the host's number of further tries; it is limited to 0 to 100.
  explicit Retries(long option);

  // Returns true if a try with this result is followed by another one.
  [[nodiscard]] bool AnotherAfter(QvTransferResult result);
  // Returns the pause before that try. Each pause is longer than the one before, up to a limit.
  [[nodiscard]] std::chrono::milliseconds NextPause();

 private:
  long left_;
  bool has_broken_ = false;
  std::chrono::milliseconds pause_{0};
};

}  // namespace qv::components
