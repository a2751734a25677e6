#include "MessageExchange.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "RequestPayload.h"

namespace qv {

namespace {

Bytes BytesOf(const std::string& text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

bool HasRoom(CMsgContent& reply) { return reply.IsBound() && reply.Queue().IsValid(); }

}  // namespace

MessageExchange::MessageExchange(Transport& transport, Peer peer, const CMsgContent& request,
                                 CMsgContent& reply, ProgressListener listener)
    : transport_(transport),
      peer_(std::move(peer)),
      request_(request),
      reply_(reply),
      listener_(listener),
      settings_(transport.parameters.Snapshot()) {}

int MessageExchange::Run() {
  const std::optional<Bytes> payload = RequestPayload(request_);
  if (!request_.IsBound() || !payload || !HasRoom(reply_)) return kNotDelivered;
  if (payload->size() > kMaxPayload) return kNotDelivered;
  if (*request_.FileName() != '\0') {
    file_ = OutgoingFile::Open(request_.FileName());
    if (!file_) return kNotDelivered;
  }
  transport_.health.Remember(peer_);
  const std::uint64_t generation = transport_.pool.Generation();
  if (const int sent = Send(*payload); sent != kDelivered) return sent;
  const int received = Receive();
  if (received == kDelivered) {
    transport_.health.Delivered();
    transport_.pool.Give(std::move(connection_), generation);
  }
  return received;
}

int MessageExchange::Interrupted() const {
  return connection_ && connection_->HasWritten() ? kOutcomeUnknown : kNotDelivered;
}

int MessageExchange::Send(Bytes payload) {
  FrameStatus status = FrameStatus::kConnectionLost;
  if (auto kept = transport_.pool.Take(peer_)) status = SendOver(std::move(kept), payload);
  if (status != FrameStatus::kDone && Interrupted() == kNotDelivered) {
    auto opened = Connection::Open(peer_, settings_.connect_timeout);
    if (opened) status = SendOver(std::move(opened), payload);
  }
  if (status == FrameStatus::kDone) {
    ReportMessage(payload.size());
    return kDelivered;
  }
  if (Interrupted() == kNotDelivered) transport_.health.ConnectFailed(peer_);
  return Interrupted();
}

FrameStatus MessageExchange::SendOver(std::unique_ptr<Connection> connection, Bytes payload) {
  connection_ = std::move(connection);
  connection_->Begin(settings_.io_timeout);
  const OutgoingMessage message{.kind = FrameKind::kRequest,
                                .token = BytesOf(settings_.token),
                                .block = Bytes(request_.Block(), kFrameBlockSize),
                                .payload = payload};
  return SendFrame(*connection_, message, file_ ? &*file_ : nullptr, FileListener());
}

int MessageExchange::Receive() {
  switch (ReceiveReply()) {
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

FrameStatus MessageExchange::ReceiveReply() {
  CFIFOClass& queue = reply_.Queue();
  const std::string path = reply_.FileName();
  FrameHeader header;
  FrameStatus status =
      ReceiveHeader(*connection_, FrameKind::kReply, {.payload = queue.Capacity()}, header);
  if (status != FrameStatus::kDone) return status;
  if (header.file_length && path.empty()) return FrameStatus::kDoesNotFit;

  // What stands in the reply's area is seen only once SetFilled has said so.
  std::array<unsigned char, kFrameBlockSize> block{};
  const WritableBytes payload(queue.Area(), static_cast<std::size_t>(header.payload_length));
  status = ReceiveMessage(*connection_, {.token = {}, .block = block, .payload = payload});
  if (status == FrameStatus::kDone) ReportMessage(payload.size());
  if (status == FrameStatus::kDone && header.file_length) {
    status = ReceiveFile(*connection_, *header.file_length, path, FileListener());
  }
  if (status != FrameStatus::kDone) {
    std::fill(payload.begin(), payload.end(), static_cast<unsigned char>(0));
    return status;
  }
  std::memcpy(reply_.Block(), block.data(), block.size());
  const bool fits = queue.SetFilled(static_cast<std::uint32_t>(payload.size()));
  return fits ? FrameStatus::kDone : FrameStatus::kDoesNotFit;
}

FileProgress MessageExchange::FileListener() const {
  if (listener_.callback == nullptr) return nullptr;
  return [listener = listener_](std::uint64_t done, std::uint64_t total) {
    listener.callback(done, total, NetworkProgress_File, listener.context);
  };
}

void MessageExchange::ReportMessage(std::uint64_t payload_length) const {
  if (listener_.callback == nullptr) return;
  const std::uint64_t length = payload_length + kFrameBlockSize;
  listener_.callback(length, length, NetworkProgress_Message, listener_.context);
}

}  // namespace qv
