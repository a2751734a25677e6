// The way of a reply from a stream into the message that waits for it.
#pragma once

#include <cstdint>
#include <functional>

#include "message/MsgContent.h"
#include "qvnetcall/ResultCodes.h"
#include "transports/frame/Frame.h"
#include "transports/frame/FrameIo.h"

namespace qv::wire {

// Who hears of a reply's progress; either may be empty.
struct ReplyProgress {
  // The fields are here: so many bytes of payload.
  std::function<void(std::uint64_t payload)> message = nullptr;
  FileProgress file = nullptr;
};

// Receives a reply, and its file to the path that `reply` names. After anything but kDone `reply`
// holds no fields, no part of the file is left, and the stream is of no further use. kDoesNotFit
// also stands for a file that nobody named a path for.
[[nodiscard]] FrameStatus ReceiveReply(ByteStream& stream, CMsgContent& reply,
                                       const ReplyProgress& progress = {});

inline constexpr int kDelivered = result::kSuccess;
using result::kBadReply;
using result::kNotDelivered;
using result::kOutcomeUnknown;

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
