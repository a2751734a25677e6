#include "ManyExchange.h"

#include <utility>

#include "transports/exchange/CallError.h"
#include "transports/exchange/ReceiveReply.h"

namespace qv::wire {

namespace {

// Queues what is written.
class QueueStream final : public ByteStream {
 public:
  explicit QueueStream(SocketConnection& connection) : connection_(connection) {}

  bool Read(WritableBytes) override { return false; }
  bool Write(std::initializer_list<Bytes> pieces) override {
    connection_.Queue(pieces);
    return true;
  }

 private:
  SocketConnection& connection_;
};

bool IsNumbered(const SocketConnection& connection) { return connection.Version() == 3; }

}  // namespace

ManyExchange::ManyExchange(Transport& transport, Peer peer, int count, const NetworkCalls& calls,
                           ThreadCall& thread)
    : transport_(transport),
      peer_(std::move(peer)),
      count_(count),
      calls_(calls),
      thread_(thread),
      listener_(thread.progress),
      cancel_(thread.cancel),
      settings_(transport.parameters.Snapshot()),
      generation_(transport.pool.Generation()) {}

int ManyExchange::Run() {
  if (count_ <= 0) return 0;
  transport_.health.Remember(peer_);
  End end = Connect();
  while (end == End::kNone && done_ < count_) {
    end = SendMore();
    if (end == End::kNone) end = TakeReply();
  }
  return Conclude(end);
}

int ManyExchange::Interrupted() noexcept {
  while (done_ < count_) {
    thread_.KeepOutOfMemory();
    Report(IsSent() ? kOutcomeUnknown : kNotDelivered);
  }
  return done_;
}

ManyExchange::End ManyExchange::Connect() {
  if (cancel_.Ask()) {
    error_ = Cancelled();
    return End::kLost;
  }
  connection_ = transport_.pool.Take(peer_, IsNumbered);
  if (!connection_) return Open();
  is_kept_ = true;
  connection_->Begin(settings_.io_timeout, cancel_);
  return End::kNone;
}

ManyExchange::End ManyExchange::Open() {
  is_kept_ = false;
  Connector connector(transport_.without_version_3, peer_, settings_.connect_timeout, cancel_,
                      FrameKind::kHello3);
  auto opened = connector.Open(error_);
  if (!opened) {
    if (error_.error_class == error::kNone) return End::kOldServer;
    return error_.error_class == error::kCancelled ? End::kLost : End::kNotConnected;
  }
  opened->Begin(settings_.io_timeout, cancel_);
  if (connection_) opened->TakeQueue(*connection_);
  connection_ = std::move(opened);
  return End::kNone;
}

ManyExchange::End ManyExchange::SendMore() {
  QueueMore();
  if (connection_->Push()) return End::kNone;
  if (!is_kept_ || connection_->HasWritten()) return Lost();
  if (const End end = Open(); end != End::kNone) return end;
  return connection_->Push() ? End::kNone : Lost();
}

void ManyExchange::QueueMore() {
  while (!refusal_ && static_cast<std::size_t>(count_ - done_) > waiting_.size()) {
    if (!frame_) Prepare();
    if (!frame_ || !HasRoomForFrame()) return;
    QueueFrame();
  }
}

void ManyExchange::Prepare() {
  const int next = done_ + static_cast<int>(waiting_.size());
  const CMsgContent* const request = calls_.request(next, calls_.context);
  const bool is_alone =
      request == nullptr || *request->FileName() != '\0' || IsParameterCommand(request->Command());
  CallError error{error::kLocal, "this request cannot be sent together with others"};
  if (!is_alone) frame_ = RequestFrame::Prepare(*request, settings_.token, error);
  if (!frame_) refusal_ = std::move(error);
}

bool ManyExchange::HasRoomForFrame() const {
  if (waiting_.empty()) return true;
  const std::uint64_t on_the_way = connection_->Queued() - waiting_.front().begin;
  return on_the_way + frame_->Length() <= kRequestWindow;
}

void ManyExchange::QueueFrame() {
  const std::uint64_t begin = connection_->Queued();
  const std::uint32_t number = connection_->NextNumber();
  frame_->SetNumber(number);
  QueueStream queue(*connection_);
  if (frame_->Send(queue) == FrameStatus::kDone) {
    waiting_.push_back({begin, connection_->Queued(), number});
    ReportMessage(listener_, frame_->PayloadLength());
  } else {
    refusal_ = CallError{error::kLocal, "the request does not fit a frame"};
  }
  frame_.reset();
}

ManyExchange::End ManyExchange::TakeReply() {
  if (cancel_.Ask()) {
    error_ = Cancelled();
    return End::kLost;
  }
  if (waiting_.empty()) {
    Finish(kNotDelivered, *std::exchange(refusal_, std::nullopt));
    return End::kNone;
  }
  // The server has sent all replies before this one, so it does nothing but receive.
  if (!connection_->Flush(waiting_.front().end)) return Lost();
  const FrameStatus status = ReceiveInto(calls_.reply(done_, calls_.context));
  if (status == FrameStatus::kConnectionLost) return Lost();
  const bool is_delivered = status == FrameStatus::kDone;
  if (is_delivered) transport_.health.Delivered();
  Finish(ResultOf(status), error_);
  if (MayKeepConnection(ResultOf(status), error_)) return End::kNone;
  return is_delivered ? End::kRefused : End::kBadReply;
}

FrameStatus ManyExchange::ReceiveInto(CMsgContent* reply) {
  if (reply == nullptr || !HasRoom(*reply)) {
    error_ = NoBlock();
    return FrameStatus::kDoesNotFit;
  }
  return ReceiveReply(*connection_, {kAnswersToNumbered, waiting_.front().number}, *reply,
                      listener_, error_);
}

ManyExchange::End ManyExchange::Lost() {
  error_ = connection_->Error();
  if (!connection_->HasWritten()) transport_.health.NotDelivered(peer_, error_);
  return End::kLost;
}

int ManyExchange::Conclude(End end) {
  switch (end) {
    case End::kNone:
      transport_.pool.Give(std::move(connection_), generation_);
      break;
    case End::kOldServer:
    case End::kRefused:
      break;
    case End::kNotConnected:
      transport_.health.NotDelivered(peer_, error_);
      Finish(kNotDelivered, error_);
      break;
    case End::kLost:
      EndRest(Which::kAll, error_);
      break;
    case End::kBadReply:
      EndRest(Which::kSent, ConnectionLost(NameOf(peer_.server, peer_.port),
                                           "the reply to an earlier request cannot be used"));
      break;
  }
  return done_;
}

bool ManyExchange::IsSent() const {
  return !waiting_.empty() && connection_->Written() > waiting_.front().begin;
}

void ManyExchange::Finish(int result, const CallError& error) {
  thread_.Keep(error);
  Report(result);
}

void ManyExchange::Report(int result) {
  if (!waiting_.empty()) waiting_.pop_front();
  const int index = done_++;
  calls_.finished(index, result, calls_.context);
}

void ManyExchange::EndRest(Which which, const CallError& error) {
  while (done_ < count_ && (which == Which::kAll || IsSent())) {
    Finish(IsSent() ? kOutcomeUnknown : kNotDelivered, error);
  }
}

}  // namespace qv::wire
