// One call over a socket: sends the request and receives the reply.
#pragma once

#include "Connector.h"
#include "NetworkHealth.h"
#include "SocketConnection.h"
#include "SocketParameters.h"
#include "transports/exchange/IdlePool.h"
#include "transports/exchange/RequestFrame.h"

namespace qv::wire {

// The state that all calls of a process share.
struct Transport {
  SocketParameters parameters;
  IdlePool<SocketConnection> pool;
  NetworkHealth health;
  OldServers old_servers;  // that know no hello
  OldServers without_version_3;
};

// The transport and the messages belong to the caller and must outlive this object.
class MessageExchange {
 public:
  MessageExchange(Transport& transport, Peer peer, const CMsgContent& request, CMsgContent& reply,
                  const ThreadCall& thread);

  // Returns the result of the call. Throws std::exception if memory or threads run out; the result
  // is that of Interrupted() then.
  [[nodiscard]] int Run();
  [[nodiscard]] int Interrupted() const;
  // The reason that the server gave, or why the call failed; valid after Run.
  [[nodiscard]] const CallError& Error() const { return error_; }

 private:
  // Obtains a connection and sends the request. If a kept connection fails before it has taken a
  // byte, a new one is tried once. Once a byte was written, nothing is sent again.
  [[nodiscard]] int Send(RequestFrame& frame);
  [[nodiscard]] FrameStatus SendOver(std::unique_ptr<SocketConnection> connection,
                                     RequestFrame& frame);
  [[nodiscard]] int Receive();

  Transport& transport_;
  Peer peer_;
  const CMsgContent& request_;
  CMsgContent& reply_;
  const ProgressListener listener_;
  const CancelQuestion cancel_;
  SocketSettings settings_;
  CallError error_;
  std::unique_ptr<SocketConnection> connection_;
};

}  // namespace qv::wire
