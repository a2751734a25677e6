#include "MessageExchange.h"

#include <utility>

#include "transports/exchange/CallError.h"
#include "transports/exchange/ReceiveReply.h"

namespace qv::wire {

MessageExchange::MessageExchange(Transport& transport, Peer peer, const CMsgContent& request,
                                 CMsgContent& reply, const ThreadCall& thread)
    : transport_(transport),
      peer_(std::move(peer)),
      request_(request),
      reply_(reply),
      listener_(thread.progress),
      cancel_(thread.cancel),
      settings_(transport.parameters.Snapshot()) {}

int MessageExchange::Run() {
  std::optional<RequestFrame> frame =
      RequestFrame::Prepare(request_, reply_, settings_.token, error_);
  if (!frame) return kNotDelivered;
  transport_.health.Remember(peer_);
  if (cancel_.Ask()) {
    error_ = Cancelled();
    return kNotDelivered;
  }
  const std::uint64_t generation = transport_.pool.Generation();
  if (const int sent = Send(*frame); sent != kDelivered) return sent;
  const int received = Receive();
  if (received == kDelivered) {
    transport_.health.Delivered();
    // Closing the connection at a hello is no proof: a server that restarts does that as well.
    if (connection_->Version() == 1) transport_.old_servers.Add(peer_);
  }
  if (MayKeepConnection(received, error_)) {
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
  if (status != FrameStatus::kDone && Interrupted() == kNotDelivered &&
      error_.error_class != error::kCancelled) {
    Connector connector(transport_.old_servers, peer_, settings_.connect_timeout, cancel_);
    if (auto opened = connector.Open(error_)) status = SendOver(std::move(opened), frame);
  }
  if (status == FrameStatus::kDone) {
    ReportMessage(listener_, frame.PayloadLength());
    return kDelivered;
  }
  if (Interrupted() == kNotDelivered) transport_.health.NotDelivered(peer_, error_);
  return Interrupted();
}

FrameStatus MessageExchange::SendOver(std::unique_ptr<SocketConnection> connection,
                                      RequestFrame& frame) {
  connection_ = std::move(connection);
  connection_->Begin(settings_.io_timeout, cancel_);
  error_ = {};
  const FrameStatus status = frame.Send(*connection_, FileListener(listener_));
  if (status == FrameStatus::kFileFailed) {
    error_ = {error::kLocal, std::string("cannot read all of the file ") + request_.FileName()};
  } else if (status != FrameStatus::kDone) {
    error_ = connection_->Error();
  }
  return status;
}

int MessageExchange::Receive() {
  const FrameKind old_reply[] = {FrameKind::kReply};
  const FrameKinds expected =
      connection_->Version() > 1 ? FrameKinds(kAnswersToRequest) : FrameKinds(old_reply);
  const FrameStatus status = ReceiveReply(*connection_, {expected}, reply_, listener_, error_);
  if (status == FrameStatus::kConnectionLost) error_ = connection_->Error();
  return ResultOf(status);
}

}  // namespace qv::wire
