// A request on its way to the server, and the reply on its way back.
#pragma once

#include "NetworkHealth.h"
#include "SocketConnection.h"
#include "SocketParameters.h"
#include "qvnetcall/transport/NetworkProgress.h"
#include "transports/exchange/IdlePool.h"
#include "transports/exchange/RequestFrame.h"

namespace qv::wire {

// What the calls of a process share.
struct Transport {
  SocketParameters parameters;
  IdlePool<SocketConnection> pool;
  NetworkHealth health;
};

struct ProgressListener {
  NetworkProgress callback = nullptr;
  void* context = nullptr;
};

// One call. The transport and the messages are the caller's and outlive it.
class MessageExchange {
 public:
  MessageExchange(Transport& transport, Peer peer, const CMsgContent& request, CMsgContent& reply,
                  ProgressListener listener);

  // Throws std::exception when memory or threads are short; Interrupted() is the result then.
  [[nodiscard]] int Run();
  [[nodiscard]] int Interrupted() const;

 private:
  // Gets a connection and sends the request over it. A connection that failed before it took a byte
  // is replaced once; after that nothing is ever sent again.
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
