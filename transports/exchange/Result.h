// What the transports' calls return.
#pragma once

#include "transports/frame/Frame.h"

namespace qv::wire {

inline constexpr int kDelivered = 0;
inline constexpr int kNotDelivered = -1;
inline constexpr int kOutcomeUnknown = -2;
inline constexpr int kBadReply = -3;

// The result of a call whose request was sent and whose reply came to `reply`.
[[nodiscard]] constexpr int ResultOf(FrameStatus reply) {
  switch (reply) {
    case FrameStatus::kDone:
      return kDelivered;
    case FrameStatus::kConnectionLost:
      return kOutcomeUnknown;
    case FrameStatus::kMalformed:
    case FrameStatus::kBadChecksum:
    case FrameStatus::kDoesNotFit:
    case FrameStatus::kFileFailed:
      break;
  }
  return kBadReply;
}

}  // namespace qv::wire
