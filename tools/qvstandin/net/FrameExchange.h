// One request and its reply, over sockets and over HTTP.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "FrameSession.h"
#include "tools/qvstandin/commands/Command.h"
#include "tools/qvstandin/stores/TemporaryFile.h"
#include "transports/frame/FrameIo.h"

namespace qv::standin {

// Returns the failure of a request whose reception ended with that status.
[[nodiscard]] Outcome FailureOf(wire::FrameStatus status);

// Call Receive(), Answer() and Send() in this order, once each, and only if the previous call
// succeeded.
class FrameExchange {
 public:
  // All arguments outlive the exchange.
  FrameExchange(ClientStream& client, Services& services, const SessionRules& rules)
      : client_(client), services_(services), rules_(rules) {}

  // Receives one of the `expected` frames, a request or a hello. `login_token` is the token that
  // came outside the frame; empty if there was none.
  [[nodiscard]] wire::FrameStatus Receive(wire::ByteStream& stream, wire::FrameKinds expected,
                                          std::string_view login_token = {});
  // Returns what came. A hello is not executed.
  [[nodiscard]] wire::FrameKind Kind() const { return header_.kind; }
  [[nodiscard]] bool IsHello() const {
    return Kind() == wire::FrameKind::kHello || Kind() == wire::FrameKind::kHello3;
  }
  // Makes the reply one with the reason of a failure: of version 2, or of version 3 if the request
  // has a number. Call it before Receive(). A request or a file that is too large is read to its
  // end then, so that it can be answered.
  void TakeReasons() { takes_reasons_ = true; }
  // Returns whether the request carried a valid token, or none is required.
  [[nodiscard]] bool IsAllowed() const { return is_allowed_; }
  // Executes the request, or refuses it if it is not allowed. Calls `abandoned` now and then, which
  // returns whether the client is gone. Returns false if there is no reply to send.
  [[nodiscard]] bool Answer(AnswerForm form, const std::function<bool()>& abandoned);
  // Makes the reply a refusal, because Receive() failed with that status, and records it.
  void Refuse(wire::FrameStatus status);
  // Returns the number of bytes that Send() will send.
  [[nodiscard]] std::uint64_t ReplyLength() const;
  [[nodiscard]] bool Send(wire::ByteStream& stream);

 private:
  using Clock = std::chrono::steady_clock;

  [[nodiscard]] bool ShowsToken(std::string_view login_token) const;
  [[nodiscard]] wire::FrameStatus ReceiveMessage(wire::ByteStream& stream);
  // Reads a message to its end and keeps only its token and its block.
  [[nodiscard]] wire::FrameStatus SkipMessage(wire::ByteStream& stream);
  // Executes the request.
  [[nodiscard]] Reply Work(AnswerForm form, const std::function<bool()>& abandoned);
  [[nodiscard]] wire::FrameStatus ReceiveFile(wire::ByteStream& stream, std::uint64_t length);
  // Completes the reply, whose outcome is known.
  void Conclude();
  [[nodiscard]] bool OpenReplyFile();
  [[nodiscard]] wire::FrameKind ReplyKind() const;
  void Record() const;

  ClientStream& client_;
  Services& services_;
  const SessionRules& rules_;
  const Clock::time_point start_ = Clock::now();
  wire::FrameHeader header_;
  std::vector<unsigned char> token_;
  std::array<unsigned char, wire::kFrameBlockSize> block_{};
  std::vector<unsigned char> payload_;
  std::uint32_t command_ = 0;
  bool is_allowed_ = false;
  bool takes_reasons_ = false;
  Outcome refusal_;  // why the request is not executed, although it is complete
  std::optional<TemporaryFile> received_;
  Reply reply_;
  std::vector<unsigned char> reason_;
  std::optional<wire::OutgoingFile> file_;
};

}  // namespace qv::standin
