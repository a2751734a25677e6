// One request and its reply, whatever their frames travel over.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "Session.h"
#include "tools/qvstandin/commands/Command.h"
#include "tools/qvstandin/stores/TemporaryFile.h"
#include "transports/frame/FrameIo.h"

namespace qv::standin {

// Receive, Answer and Send are called in this order, each once and only after the one before it
// went well.
class FrameExchange {
 public:
  // Both outlive the exchange.
  FrameExchange(Services& services, const SessionRules& rules)
      : services_(services), rules_(rules) {}

  // `login_token` is what the sender showed besides the frame; empty when nothing.
  [[nodiscard]] wire::FrameStatus Receive(wire::ByteStream& stream,
                                          std::string_view login_token = {});
  // Whether the request may be answered.
  [[nodiscard]] bool IsAllowed() const { return is_allowed_; }
  // Carries the request out, or refuses it when it is not allowed. Asks `abandoned` now and then
  // whether anybody still waits. False when there is no reply that could be sent.
  [[nodiscard]] bool Answer(AnswerForm form, const std::function<bool()>& abandoned);
  // How many bytes Send is going to send.
  [[nodiscard]] std::uint64_t ReplyLength() const;
  [[nodiscard]] bool Send(wire::ByteStream& stream);

 private:
  using Clock = std::chrono::steady_clock;

  [[nodiscard]] bool ShowsToken(std::string_view login_token) const;
  [[nodiscard]] wire::FrameStatus ReceiveFile(wire::ByteStream& stream, std::uint64_t length);
  [[nodiscard]] bool OpenReplyFile();
  void Record() const;

  Services& services_;
  const SessionRules& rules_;
  const Clock::time_point start_ = Clock::now();
  std::vector<unsigned char> token_;
  std::array<unsigned char, wire::kFrameBlockSize> block_{};
  std::vector<unsigned char> payload_;
  std::uint32_t command_ = 0;
  bool is_allowed_ = false;
  std::optional<TemporaryFile> received_;
  Reply reply_;
  std::optional<wire::OutgoingFile> file_;
};

}  // namespace qv::standin
