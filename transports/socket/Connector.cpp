#include "Connector.h"

#include <algorithm>

#include "transports/exchange/CallError.h"
#include "transports/exchange/Waiting.h"

namespace qv::wire {

bool OldServers::Has(const Peer& peer) const {
  const std::lock_guard lock(mutex_);
  return std::ranges::any_of(entries_, [&](const Entry& one) {
    return one.peer == peer && Clock::now() - one.since < kRemembered;
  });
}

void OldServers::Add(const Peer& peer) {
  if (Has(peer)) return;
  const std::lock_guard lock(mutex_);
  std::erase_if(entries_, [&](const Entry& one) { return one.peer == peer; });
  if (entries_.size() == kMost) entries_.erase(entries_.begin());
  entries_.push_back({peer, Clock::now()});
}

void OldServers::Forget(const Peer& peer) {
  const std::lock_guard lock(mutex_);
  std::erase_if(entries_, [&](const Entry& one) { return one.peer == peer; });
}

void OldServers::Clear() {
  const std::lock_guard lock(mutex_);
  entries_.clear();
}

std::unique_ptr<SocketConnection> Connector::Open(CallError& error) {
  std::unique_ptr<SocketConnection> connection;
  Greeting greeting = TryOnce(connection, error);
  if (greeting == Greeting::kBusy && PauseWhileBusy(patience_.deadline, patience_.cancel))
    greeting = TryOnce(connection, error);
  if (greeting == Greeting::kDone) return connection;
  if (greeting == Greeting::kOld) error = {};
  if (patience_.cancel.Ask()) error = Cancelled();
  if (error.error_class == error::kCannotConnect) old_servers_.Forget(peer_);
  return nullptr;
}

Connector::Greeting Connector::TryOnce(std::unique_ptr<SocketConnection>& connection,
                                       CallError& error) {
  if (!old_servers_.Has(peer_)) {
    connection = Connect(error);
    if (!connection) return Greeting::kFailed;
    const Greeting greeting = SayHello(*connection, error);
    if (greeting != Greeting::kOld) return greeting;
    if (hello_ != FrameKind::kHello) old_servers_.Add(peer_);
  }
  if (hello_ != FrameKind::kHello) return Greeting::kOld;
  connection = Connect(error);
  return connection ? Greeting::kDone : Greeting::kFailed;
}

std::unique_ptr<SocketConnection> Connector::Connect(CallError& error) {
  std::string why;
  auto connection = SocketConnection::Open(peer_, patience_, why);
  if (!connection) error = why.empty() ? Cancelled() : Failed(why);
  return connection;
}

Connector::Greeting Connector::SayHello(SocketConnection& connection, CallError& error) const {
  using Trouble = SocketConnection::Trouble;
  connection.BeginHandshake(patience_);
  FrameHeader answer;
  FrameStatus status = FrameStatus::kConnectionLost;
  // A server that is busy may have answered and closed the connection before it took the hello.
  const bool is_sent = SendHello(connection, hello_);
  if (is_sent || connection.LastTrouble() == Trouble::kLost) {
    const bool is_new = hello_ == FrameKind::kHello3;
    status = ReceiveHeader(connection, is_new ? kAnswersToHello3 : kAnswersToHello, {}, answer);
  }
  Reason reason;
  const bool is_busy = status == FrameStatus::kDone && answer.kind == FrameKind::kBusy;
  if (is_busy) status = ReceiveBusy(connection, answer, reason);
  if (status == FrameStatus::kDone) {
    if (is_busy) error = Busy(reason);
    if (!is_busy) connection.SetVersion(hello_ == FrameKind::kHello3 ? 3 : 2);
    return is_busy ? Greeting::kBusy : Greeting::kDone;
  }
  if (connection.IsClosedWithoutAnswer()) return Greeting::kOld;
  error = HelloFailed(connection, status);
  return Greeting::kFailed;
}

CallError Connector::HelloFailed(const SocketConnection& connection, FrameStatus status) const {
  using Trouble = SocketConnection::Trouble;
  if (connection.LastTrouble() == Trouble::kCancelled) return Cancelled();
  if (connection.LastTrouble() == Trouble::kTooLate) return Failed("no answer");
  // An older server would have closed the connection: this one, or the network, is not in order.
  return Failed(status == FrameStatus::kConnectionLost ? connection.WhyLost()
                                                       : "the answer to the hello is malformed");
}

CallError Connector::Failed(const std::string& why) const {
  return CannotConnect(NameOf(peer_.server, peer_.port), timeout_, why);
}

}  // namespace qv::wire
