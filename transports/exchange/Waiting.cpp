#include "Waiting.h"

#include <algorithm>
#include <thread>

namespace qv::wire {

bool PauseWhileBusy(std::chrono::steady_clock::time_point deadline, const CancelQuestion& cancel) {
  using Clock = std::chrono::steady_clock;
  // Places become free when the calls of others end, which takes moments.
  constexpr std::chrono::milliseconds kPause{250};
  const Clock::time_point end = Clock::now() + kPause;
  if (end >= deadline) return false;
  for (auto now = Clock::now(); now < end && !cancel.Ask(); now = Clock::now()) {
    std::this_thread::sleep_for(cancel.IsSet() ? std::min<Clock::duration>(end - now, kCancelSlice)
                                               : end - now);
  }
  return !cancel.Ask();
}

}  // namespace qv::wire
