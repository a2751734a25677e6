// A validated request that can be sent.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ThreadCall.h"
#include "message/MsgContent.h"
#include "transports/frame/Frame.h"
#include "transports/frame/FrameIo.h"

namespace qv::wire {

// Refers to the request, which must outlive it.
class RequestFrame {
 public:
  // Returns nothing, and sets `error`, if the call cannot be made: the request or the reply is
  // unbound, the payload exceeds the limit, or the file cannot be opened.
  [[nodiscard]] static std::optional<RequestFrame> Prepare(const CMsgContent& request,
                                                           CMsgContent& reply, std::string token,
                                                           CallError& error);
  // The same without a look at the reply.
  [[nodiscard]] static std::optional<RequestFrame> Prepare(const CMsgContent& request,
                                                           std::string token, CallError& error);

  // Makes it a numbered request. Call it before Send().
  void SetNumber(std::uint32_t number) { number_ = number; }

  // The number of bytes that Send writes.
  [[nodiscard]] std::uint64_t Length() const;
  [[nodiscard]] std::uint64_t PayloadLength() const { return payload_.size(); }
  // May be called again if the previous call wrote nothing.
  [[nodiscard]] FrameStatus Send(ByteStream& stream, const FileProgress& progress = nullptr);

 private:
  RequestFrame(const CMsgContent& request, Bytes payload, std::string token)
      : request_(&request), payload_(payload), token_(std::move(token)) {}

  [[nodiscard]] OutgoingMessage Message() const;

  const CMsgContent* request_;
  Bytes payload_;
  std::string token_;
  std::optional<OutgoingFile> file_;
  std::optional<std::uint32_t> number_;
};

// Returns whether a reply can be received into the message.
[[nodiscard]] bool HasRoom(CMsgContent& reply);

// Returns the fields that were appended and not read yet, from the block or from the overflow store
// of a spilled message, which owns them. Returns nothing if the message has no area.
[[nodiscard]] std::optional<Bytes> RequestPayload(const CMsgContent& request);

}  // namespace qv::wire
