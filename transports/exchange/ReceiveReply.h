// Receives a reply from a stream into the message that the caller passed.
#pragma once

#include <cstdint>

#include "ThreadCall.h"
#include "message/MsgContent.h"
#include "qvnetcall/ResultCodes.h"
#include "transports/frame/Frame.h"
#include "transports/frame/FrameIo.h"

namespace qv::wire {

// What a client takes for a reply: these kinds, and of a numbered request this number.
struct ExpectedReply {
  FrameKinds kinds;
  std::uint32_t number = 0;
};

// Receives a reply, and its file to the path that `reply` names, and passes its progress to
// `listener`. Expect kAnswersToRequest, kReply alone from a server of version 1, or
// kAnswersToNumbered; a reply with another number than the expected one is malformed. Sets `error`
// to what the server gave as reason, or, if the result is neither kDone nor kConnectionLost, to
// what is wrong with the reply. If the result is not kDone, `reply` holds no fields, nothing of the
// file is left, and the stream must not be used again. Returns kDoesNotFit also for a file if
// `reply` names no path.
[[nodiscard]] FrameStatus ReceiveReply(ByteStream& stream, const ExpectedReply& expected,
                                       CMsgContent& reply, const ProgressListener& listener,
                                       CallError& error);

// Passes the progress of a file to `listener`; null if there is none. `listener` outlives it.
[[nodiscard]] FileProgress FileListener(const ProgressListener& listener);
// Reports that the fields of a message have been sent or received.
void ReportMessage(const ProgressListener& listener, std::uint64_t payload_length);

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
