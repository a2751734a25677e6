#include "Session.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "CommandTable.h"
#include "message/LittleEndian.h"

namespace qv::standin {

namespace {

using Clock = std::chrono::steady_clock;

// No command here takes a file; one that comes along is read past when it is small.
constexpr std::uint64_t kLongestUnwantedFile = 16ULL << 20;

// Takes the same time wherever the two differ.
bool SameSecret(std::string_view secret, const std::vector<unsigned char>& given) {
  std::size_t difference = secret.size() ^ given.size();
  for (std::size_t i = 0; i < given.size(); ++i) {
    const char expected = secret.empty() ? '\0' : secret[i % secret.size()];
    difference |= static_cast<std::size_t>(static_cast<unsigned char>(expected) ^ given[i]);
  }
  return difference == 0;
}

// What is remembered must not take a client's megabytes, nor its control characters.
std::string Remark(std::string_view text) {
  constexpr std::size_t kLongest = 160;
  return OnOneLine(text.substr(0, kLongest));
}

}  // namespace

void Session::Serve() {
  std::chrono::milliseconds longest = rules_.first_timeout;
  while (stream_.WaitForRequest(longest) && ServeRequest()) longest = rules_.idle_timeout;
}

bool Session::ServeRequest() {
  const auto start = Clock::now();
  Message message;
  const FrameStatus status = Receive(message);
  if (status != FrameStatus::kDone) {
    if (status != FrameStatus::kConnectionLost) rules_.on_malformed_frame();
    return false;
  }
  const std::uint32_t command = LoadU32(message.block.data());
  const bool may_enter = MayEnter(message);
  Reply reply;
  if (may_enter) {
    WorkLimit limit(rules_.statement_limit, [this] { return stream_.IsGone(); });
    reply = Answer(services_, {command, FieldReader(message.payload), limit});
  } else {
    AddFailure(reply, {ErrorCode::kAccessDenied, "wrong token"});
  }
  message = {};  // a large request is not kept while its answer goes out
  Record(command, reply, start);
  return Send(command, reply) && may_enter;
}

FrameStatus Session::Receive(Message& message) {
  const FrameLimits limits{.payload = rules_.request_limit, .file = kLongestUnwantedFile};
  FrameHeader header;
  FrameStatus status = ReceiveHeader(stream_, FrameKind::kRequest, limits, header);
  if (status != FrameStatus::kDone) return status;
  message.token.resize(header.token_length);
  message.block.resize(kFrameBlockSize);
  message.payload.resize(static_cast<std::size_t>(header.payload_length));
  status = ReceiveMessage(stream_, {message.token, message.block, message.payload});
  if (status != FrameStatus::kDone || !header.file_length) return status;
  return SkipFile(stream_, *header.file_length);
}

bool Session::MayEnter(const Message& message) const {
  return rules_.token.empty() || SameSecret(rules_.token, message.token);
}

bool Session::Send(std::uint32_t command, const Reply& reply) {
  std::optional<OutgoingFile> file;
  if (reply.file != nullptr) {
    file = OutgoingFile::Open(reply.file->Path());
    if (!file) return false;
  }
  std::array<unsigned char, kFrameBlockSize> block{};
  StoreU32(block.data(), command);
  const OutgoingMessage message{
      .kind = FrameKind::kReply, .token = {}, .block = block, .payload = reply.fields.Payload()};
  return SendFrame(stream_, message, file ? &*file : nullptr) == FrameStatus::kDone;
}

void Session::Record(std::uint32_t command, const Reply& reply, Clock::time_point start) {
  const std::uint64_t file_bytes = reply.file != nullptr ? reply.file->Size() : 0;
  rules_.on_served(
      {.command = command,
       .database = Remark(reply.database),
       .outcome = reply.outcome.Ok() ? "done" : Remark(reply.outcome.text),
       .bytes = reply.fields.Payload().size() + file_bytes,
       .time = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start)});
}

}  // namespace qv::standin
