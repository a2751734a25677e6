// A request that was looked over and can be sent.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "message/MsgContent.h"
#include "transports/frame/Frame.h"
#include "transports/frame/FrameIo.h"

namespace qv::wire {

// Refers to the request, which outlives it.
class RequestFrame {
 public:
  // Nothing when the call cannot be made: an unbound request or reply, a payload above the limit,
  // or a file that cannot be opened.
  [[nodiscard]] static std::optional<RequestFrame> Prepare(const CMsgContent& request,
                                                           CMsgContent& reply, std::string token);

  // The bytes that Send writes.
  [[nodiscard]] std::uint64_t Length() const;
  [[nodiscard]] std::uint64_t PayloadLength() const { return payload_.size(); }
  // May be called again as long as the call before it wrote nothing.
  [[nodiscard]] FrameStatus Send(ByteStream& stream, const FileProgress& progress = nullptr);

 private:
  RequestFrame(const CMsgContent& request, Bytes payload, std::string token)
      : request_(&request), payload_(payload), token_(std::move(token)) {}

  [[nodiscard]] OutgoingMessage Message() const;

  const CMsgContent* request_;
  Bytes payload_;
  std::string token_;
  std::optional<OutgoingFile> file_;
};

// The fields that were appended and not read yet: in the block, or in the overflow store of a
// message that spilled. They stay the message's. Nothing when there is no area to look at.
[[nodiscard]] std::optional<Bytes> RequestPayload(const CMsgContent& request);

}  // namespace qv::wire
