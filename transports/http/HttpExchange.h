// A request on its way to the server, and the reply on its way back.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "HttpState.h"
#include "HttpStream.h"
#include "message/MsgContent.h"
#include "transports/exchange/IdlePool.h"
#include "transports/exchange/RequestFrame.h"

namespace qv::wire {

// What the calls of a process share.
struct HttpTransport {
  HttpParameters parameters;
  IdlePool<KeptConnection> pool;
  LoginTokens tokens;
};

// One call. The transport and the messages are the caller's and outlive it.
class HttpExchange {
 public:
  HttpExchange(HttpTransport& transport, const CMsgContent& request, CMsgContent& reply)
      : transport_(transport),
        request_(request),
        reply_(reply),
        settings_(transport.parameters.Snapshot()) {}

  // Throws std::exception when memory is short; Interrupted() is the result then.
  [[nodiscard]] int Run(const char* server, std::uint32_t port, bool compress);
  [[nodiscard]] int Interrupted() const;

 private:
  // Sends the request and receives the reply, over the connection.
  [[nodiscard]] int Talk(RequestFrame& frame);

  HttpTransport& transport_;
  const CMsgContent& request_;
  CMsgContent& reply_;
  HttpSettings settings_;
  std::unique_ptr<KeptConnection> connection_;
  std::optional<HttpStream> stream_;
};

}  // namespace qv::wire
