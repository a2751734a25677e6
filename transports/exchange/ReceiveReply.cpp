#include "ReceiveReply.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "CallError.h"

namespace qv::wire {

namespace {

// Receives one reply into the message that the caller passed.
class ReplyReceiver {
 public:
  ReplyReceiver(ByteStream& stream, CMsgContent& reply, const ProgressListener& listener)
      : stream_(stream), reply_(reply), path_(reply.FileName()), listener_(listener) {}

  FrameStatus Receive(const ExpectedReply& expected);
  // What is wrong with the reply if its receipt ended with `status`.
  [[nodiscard]] CallError Error(FrameStatus status) const;
  [[nodiscard]] CallError ServersError() const { return FromServer(DecodeReason(reason_)); }

 private:
  // Skips the progress frames before the reply.
  FrameStatus ReceiveReplyHeader(const ExpectedReply& expected);
  FrameStatus ReceiveBody(WritableBytes payload);

  ByteStream& stream_;
  CMsgContent& reply_;
  const std::string path_;
  const ProgressListener& listener_;
  FrameHeader header_;
  std::array<unsigned char, kFrameBlockSize> block_{};
  std::vector<unsigned char> reason_;
  bool is_in_file_ = false;
};

FrameStatus ReplyReceiver::ReceiveReplyHeader(const ExpectedReply& expected) {
  const FrameLimits limits{.payload = reply_.Queue().Capacity()};
  for (;;) {
    const FrameStatus status = ReceiveHeader(stream_, expected.kinds, limits, header_);
    if (status != FrameStatus::kDone) return status;
    if (header_.kind != FrameKind::kProgress) {
      return header_.number == expected.number ? FrameStatus::kDone : FrameStatus::kMalformed;
    }
    listener_.Report(header_.payload_length, header_.payload_length, NetworkProgress_Working);
  }
}

FrameStatus ReplyReceiver::Receive(const ExpectedReply& expected) {
  FrameStatus status = ReceiveReplyHeader(expected);
  if (status != FrameStatus::kDone) return status;
  if (header_.file_length && path_.empty()) return FrameStatus::kDoesNotFit;
  reason_.resize(header_.token_length);

  // The bytes in the reply's area do not become fields before SetFilled.
  CFIFOClass& queue = reply_.Queue();
  const WritableBytes payload(queue.Area(), static_cast<std::size_t>(header_.payload_length));
  status = ReceiveBody(payload);
  if (status != FrameStatus::kDone) {
    std::fill(payload.begin(), payload.end(), static_cast<unsigned char>(0));
    return status;
  }
  std::memcpy(reply_.Block(), block_.data(), block_.size());
  const bool fits = queue.SetFilled(static_cast<std::uint32_t>(payload.size()));
  return fits ? FrameStatus::kDone : FrameStatus::kDoesNotFit;
}

FrameStatus ReplyReceiver::ReceiveBody(WritableBytes payload) {
  const FrameStatus status =
      ReceiveMessage(stream_, {.token = reason_, .block = block_, .payload = payload});
  if (status != FrameStatus::kDone) return status;
  ReportMessage(listener_, payload.size());
  if (!header_.file_length) return stream_.End();
  is_in_file_ = true;
  return ReceiveFile(stream_, *header_.file_length, path_, FileListener(listener_));
}

CallError ReplyReceiver::Error(FrameStatus status) const {
  switch (status) {
    case FrameStatus::kBadChecksum:
      return {error::kBadReply,
              is_in_file_ ? "bad checksum in the file of the reply" : "bad checksum in the reply"};
    case FrameStatus::kDoesNotFit:
      return {error::kBadReply, header_.file_length && path_.empty()
                                    ? "the reply brings a file that was not asked for"
                                    : "the reply is larger than the memory for it"};
    case FrameStatus::kFileFailed:
      return {error::kLocal, "cannot write the file " + path_};
    case FrameStatus::kMalformed:
      return {error::kBadReply, "the reply is malformed"};
    case FrameStatus::kDone:
    case FrameStatus::kConnectionLost:
      break;
  }
  return {};
}

}  // namespace

FrameStatus ReceiveReply(ByteStream& stream, const ExpectedReply& expected, CMsgContent& reply,
                         const ProgressListener& listener, CallError& error) {
  ReplyReceiver receiver(stream, reply, listener);
  const FrameStatus status = receiver.Receive(expected);
  error = status == FrameStatus::kDone ? receiver.ServersError() : receiver.Error(status);
  return status;
}

FileProgress FileListener(const ProgressListener& listener) {
  if (!listener.IsSet()) return nullptr;
  return [&listener](std::uint64_t done, std::uint64_t total) {
    listener.Report(done, total, NetworkProgress_File);
  };
}

void ReportMessage(const ProgressListener& listener, std::uint64_t payload_length) {
  const std::uint64_t length = payload_length + kFrameBlockSize;
  listener.Report(length, length, NetworkProgress_Message);
}

}  // namespace qv::wire
