#include "FrameExchange.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>

#include "base/text/Utf8.h"
#include "message/LittleEndian.h"

namespace qv::standin {

namespace {

// A file that comes with a command that takes none is skipped up to this size.
constexpr std::uint64_t kLongestUnwantedFile = 16ULL << 20;
// A file over the limit is skipped up to this size, so that the client learns the reason.
constexpr std::uint64_t kLongestSkippedFile = 4ULL << 30;

// The longest name of a database or a file in the record of served requests.
constexpr std::size_t kLongestSubject = 160;

std::string Beginning(std::string_view text, std::size_t longest) {
  return std::string(text::BeginningOf(text, longest));
}

Outcome TooLarge(std::string_view what, std::uint64_t limit) {
  return {ErrorCode::kNotPermitted,
          fmt::format("the {} is larger than {}", what, TextOfBytes(limit)), error::kTooLarge};
}

}  // namespace

Outcome FailureOf(wire::FrameStatus status) {
  switch (status) {
    case wire::FrameStatus::kDoesNotFit:
      return {ErrorCode::kNotPermitted, "the request is larger than the server allows",
              error::kTooLarge};
    case wire::FrameStatus::kBadChecksum:
      return {ErrorCode::kMalformedRequest, "the request arrived damaged: its checksum is wrong"};
    case wire::FrameStatus::kFileFailed:
      return {ErrorCode::kAnswerLost, "the file could not be stored (disk full?)"};
    default:
      return {ErrorCode::kMalformedRequest, "the request is not a frame, or a malformed one"};
  }
}

wire::FrameStatus FrameExchange::Receive(wire::ByteStream& stream, wire::FrameKinds expected,
                                         std::string_view login_token) {
  const wire::FrameLimits limits{
      .payload = takes_reasons_ ? wire::kMaxPayload : rules_.request_limit,
      .file =
          takes_reasons_ ? wire::kMaxFile : std::max(rules_.upload_limit, kLongestUnwantedFile)};
  wire::FrameStatus status = wire::ReceiveHeader(stream, expected, limits, header_);
  if (status != wire::FrameStatus::kDone || IsHello()) return status;
  client_.LimitReads(ClientStream::Deadline::max());
  token_.resize(header_.token_length);
  status = ReceiveMessage(stream);
  if (status != wire::FrameStatus::kDone) return status;
  command_ = LoadU32(block_.data());
  is_allowed_ = ShowsToken(login_token);
  return header_.file_length ? ReceiveFile(stream, *header_.file_length) : wire::FrameStatus::kDone;
}

wire::FrameStatus FrameExchange::ReceiveMessage(wire::ByteStream& stream) {
  if (header_.payload_length > rules_.request_limit) {
    refusal_ = TooLarge("request", rules_.request_limit);
    return SkipMessage(stream);
  }
  payload_.resize(static_cast<std::size_t>(header_.payload_length));
  return wire::ReceiveMessage(stream, {token_, block_, payload_});
}

wire::FrameStatus FrameExchange::SkipMessage(wire::ByteStream& stream) {
  constexpr std::uint64_t kPiece = 1U << 20;
  if (!stream.Read(token_) || !stream.Read(block_)) return wire::FrameStatus::kConnectionLost;
  std::uint64_t left = header_.payload_length + wire::kFrameChecksumSize;
  std::vector<unsigned char> piece(kPiece);
  while (left != 0) {
    const auto length = static_cast<std::size_t>(std::min(left, kPiece));
    if (!stream.Read({piece.data(), length})) return wire::FrameStatus::kConnectionLost;
    left -= length;
  }
  return wire::FrameStatus::kDone;
}

wire::FrameStatus FrameExchange::ReceiveFile(wire::ByteStream& stream, std::uint64_t length) {
  const bool is_wanted = is_allowed_ && TakesFile(command_);
  const std::uint64_t limit = is_wanted ? rules_.upload_limit : kLongestUnwantedFile;
  if (length > limit) {
    const bool may_be_skipped = length <= std::max(limit, kLongestSkippedFile);
    if (!takes_reasons_ || !is_allowed_ || !may_be_skipped) return wire::FrameStatus::kDoesNotFit;
    refusal_ = TooLarge("file", limit);
    return wire::SkipFile(stream, length);
  }
  if (is_wanted) received_.emplace(services_.data.IncomingFolder());
  if (received_ && !received_->HasRoomFor(length)) received_.reset();
  // The client reads its answer only after it has sent the whole file, so the file is skipped.
  if (!received_) return wire::SkipFile(stream, length);
  return wire::ReceiveFile(stream, length, received_->Path());
}

bool FrameExchange::ShowsToken(std::string_view login_token) const {
  if (rules_.token.empty()) return true;
  const std::string_view token(reinterpret_cast<const char*>(token_.data()), token_.size());
  return SameSecret(rules_.token, token) ||
         (!login_token.empty() && SameSecret(rules_.login_token, login_token));
}

bool FrameExchange::Answer(AnswerForm form, const std::function<bool()>& abandoned) {
  if (!is_allowed_) {
    AddFailure(reply_, {ErrorCode::kAccessDenied, "wrong token"});
  } else if (!refusal_.Ok()) {
    AddFailure(reply_, std::move(refusal_));
  } else {
    reply_ = Work(form, abandoned);
  }
  Conclude();
  return OpenReplyFile();
}

void FrameExchange::Refuse(wire::FrameStatus status) {
  AddFailure(reply_, FailureOf(status));
  Conclude();
}

void FrameExchange::Conclude() {
  payload_ = {};  // frees a large request before its reply is sent
  received_.reset();
  if (takes_reasons_) {
    // Only the log has a class for a client that disconnected.
    const error::Class error_class = std::min(ClassOf(reply_.outcome), error::kInternal);
    reason_ = wire::EncodeReason({error_class, TextForClients(reply_.outcome, reply_.database)});
  }
  Record();
}

Reply FrameExchange::Work(AnswerForm form, const std::function<bool()>& abandoned) {
  WorkLimit limit(rules_.statement_limit, abandoned);
  const auto name_field = NameField(block_).subspan(kNameFieldAt);
  Reply reply = standin::Answer(services_, {.command = command_,
                                            .fields = FieldReader(payload_),
                                            .limit = limit,
                                            .form = form,
                                            .name_field = name_field,
                                            .file = received_ ? received_->Path() : ""});
  if (reply.outcome.code == ErrorCode::kStopped) {
    reply.outcome.text = client_.WhyGone();
    reply.outcome.error_class = client_.IsClosed() ? error::kBusy : error::kCancelled;
  }
  return reply;
}

bool FrameExchange::OpenReplyFile() {
  if (reply_.stored) file_.emplace(std::move(*reply_.stored));
  if (reply_.file == nullptr) return true;
  file_ = wire::OutgoingFile::Open(reply_.file->Path());
  return file_.has_value();
}

wire::FrameKind FrameExchange::ReplyKind() const {
  if (Kind() == wire::FrameKind::kNumberedRequest) return wire::FrameKind::kNumberedReply;
  return takes_reasons_ ? wire::FrameKind::kReplyWithReason : wire::FrameKind::kReply;
}

std::uint64_t FrameExchange::ReplyLength() const {
  wire::FrameHeader header{.kind = ReplyKind(),
                           .token_length = static_cast<std::uint32_t>(reason_.size()),
                           .payload_length = reply_.fields.Payload().size(),
                           .file_length = {}};
  if (file_) header.file_length = file_->Length();
  return wire::FrameLength(header);
}

bool FrameExchange::Send(wire::ByteStream& stream) {
  std::array<unsigned char, wire::kFrameBlockSize> block{};
  StoreU32(block.data(), command_);
  const wire::OutgoingMessage message{.kind = ReplyKind(),
                                      .token = reason_,
                                      .block = block,
                                      .payload = reply_.fields.Payload(),
                                      .number = header_.number};
  return wire::SendFrame(stream, message, file_ ? &*file_ : nullptr) == wire::FrameStatus::kDone;
}

void FrameExchange::Record() const {
  // With slashes a path means the same and needs no escapes.
  std::string subject = reply_.database;
  std::ranges::replace(subject, '\\', '/');
  std::uint64_t file_bytes = reply_.file != nullptr ? reply_.file->Size() : 0;
  if (reply_.stored) file_bytes = reply_.stored->size;
  rules_.on_served(
      {.command = command_,
       .database = Beginning(subject, kLongestSubject),
       .outcome =
           reply_.outcome.Ok() ? "done" : Beginning(reply_.outcome.text, wire::kMaxReasonText),
       .bytes = reply_.fields.Payload().size() + file_bytes,
       .time = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_),
       .error_class = ClassOf(reply_.outcome),
       .peer = client_.PeerName(),
       .statement = reply_.statement,
       .rows = reply_.rows});
}

}  // namespace qv::standin
