// One call over a socket: sends the request and receives the reply.
#pragma once

#include "NetworkHealth.h"
#include "SocketConnection.h"
#include "SocketParameters.h"
#include "qvnetcall/transport/NetworkProgress.h"
#include "transports/exchange/IdlePool.h"
#include "transports/exchange/RequestFrame.h"

namespace qv::wire {

// The state that all calls of a process share.
struct Transport {
  SocketParameters parameters;
  IdlePool<SocketConnection> pool;
  NetworkHealth health;
};

struct ProgressListener {
  NetworkProgress callback = nullptr;
  void* context = nullptr;
};

// The transport and the messages belong to the caller and must outlive this object.
class MessageExchange {
 public:
  MessageExchange(Transport& transport, Peer peer, const CMsgContent& request, CMsgContent& reply,
                  ProgressListener listener);

  // Returns the result of the call. Throws std::exception if memory or threads run out; the result
  // is that of Interrupted() then.
  [[nodiscard]] int Run();
  [[nodiscard]] int Interrupted() const;

 private:
  // Obtains a connection and sends the request. If a kept connection fails before it has taken a
  // byte, a new one is tried once. Once a byte was written, nothing is sent again.
  [[nodiscard]] int Send(RequestFrame& frame);
  [[nodiscard]] FrameStatus SendOver(std::unique_ptr<SocketConnection> connection,
                                     RequestFrame& frame);
  [[nodiscard]] int Receive();
  [[nodiscard]] FileProgress FileListener() const;
  void ReportMessage(std::uint64_t payload_length) const;

  Transport& transport_;
  Peer peer_;
  const CMsgContent& request_;
  CMsgContent& reply_;
  ProgressListener listener_;
  SocketSettings settings_;
  std::unique_ptr<SocketConnection> connection_;
};

}  // namespace qv::wire
