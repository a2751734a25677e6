// How calls wait while somebody could cancel them.
#pragma once

#include <chrono>

#include "ThreadCall.h"

namespace qv::wire {

// While somebody could cancel, waits are cut into slices of this length.
inline constexpr std::chrono::milliseconds kCancelSlice{20};

// Waits before a busy server is tried once more. Returns false if the time until `deadline` does
// not suffice, or if the call is cancelled.
[[nodiscard]] bool PauseWhileBusy(std::chrono::steady_clock::time_point deadline,
                                  const CancelQuestion& cancel);

}  // namespace qv::wire
