// Whether the call that this thread is in is cancelled.
#pragma once

#include <atomic>
#include <chrono>

namespace qv::call {

using CancelFlag = std::atomic<int>;

// Sets the flag that cancels the calls of this thread while it is not 0; null for none. The flag
// outlives its use here.
void SetCancelFlag(const CancelFlag* flag);
// Returns the flag of this thread, or null. Other threads may read the flag for it.
[[nodiscard]] const CancelFlag* CancelFlagOfThisThread();
[[nodiscard]] bool IsCancelled();

// While a flag is set, waits are cut into slices of this length to look at it.
inline constexpr std::chrono::milliseconds kSlice{20};

}  // namespace qv::call
