// Receives a reply from a stream into the message that the caller passed.
#pragma once

#include <cstdint>
#include <functional>

#include "message/MsgContent.h"
#include "qvnetcall/ResultCodes.h"
#include "transports/frame/Frame.h"
#include "transports/frame/FrameIo.h"

namespace qv::wire {

// Called with the progress of a reply; either may be empty.
struct ReplyProgress {
  // Called once, when the fields have arrived, with their number of bytes.
  std::function<void(std::uint64_t payload)> message = nullptr;
  FileProgress file = nullptr;
};

// Receives a reply, and its file to the path that `reply` names. If the result is not kDone,
// `reply` holds no fields, nothing of the file is left, and the stream must not be used again.
// Returns kDoesNotFit also for a file if `reply` names no path.
[[nodiscard]] FrameStatus ReceiveReply(ByteStream& stream, CMsgContent& reply,
                                       const ReplyProgress& progress = {});

inline constexpr int kDelivered = result::kSuccess;
using result::kBadReply;
using result::kNotDelivered;
using result::kOutcomeUnknown;

// Returns the result of a call whose request was sent and whose reply was received with this
// status.
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
