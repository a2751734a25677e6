#include "MessageExchange.h"

#include <utility>

#include "transports/exchange/ReceiveReply.h"

namespace qv::wire {

MessageExchange::MessageExchange(Transport& transport, Peer peer, const CMsgContent& request,
                                 CMsgContent& reply, ProgressListener listener)
    : transport_(transport),
      peer_(std::move(peer)),
      request_(request),
      reply_(reply),
      listener_(listener),
      settings_(transport.parameters.Snapshot()) {}

int MessageExchange::Run() {
  std::optional<RequestFrame> frame = RequestFrame::Prepare(request_, reply_, settings_.token);
  if (!frame) return kNotDelivered;
  transport_.health.Remember(peer_);
  const std::uint64_t generation = transport_.pool.Generation();
  if (const int sent = Send(*frame); sent != kDelivered) return sent;
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

int MessageExchange::Send(RequestFrame& frame) {
  FrameStatus status = FrameStatus::kConnectionLost;
  if (auto kept = transport_.pool.Take(peer_)) status = SendOver(std::move(kept), frame);
  if (status != FrameStatus::kDone && Interrupted() == kNotDelivered) {
    auto opened = SocketConnection::Open(peer_, settings_.connect_timeout);
    if (opened) status = SendOver(std::move(opened), frame);
  }
  if (status == FrameStatus::kDone) {
    ReportMessage(frame.PayloadLength());
    return kDelivered;
  }
  if (Interrupted() == kNotDelivered) transport_.health.ConnectFailed(peer_);
  return Interrupted();
}

FrameStatus MessageExchange::SendOver(std::unique_ptr<SocketConnection> connection,
                                      RequestFrame& frame) {
  connection_ = std::move(connection);
  connection_->Begin(settings_.io_timeout);
  return frame.Send(*connection_, FileListener());
}

int MessageExchange::Receive() {
  const ReplyProgress progress{.message = [this](std::uint64_t length) { ReportMessage(length); },
                               .file = FileListener()};
  return ResultOf(ReceiveReply(*connection_, reply_, progress));
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

}  // namespace qv::wire
