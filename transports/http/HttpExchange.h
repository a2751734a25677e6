// One call over HTTP: sends the request and receives the reply.
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

// The state that all calls of a process share.
struct HttpTransport {
  HttpParameters parameters;
  IdlePool<KeptConnection> pool;
  LoginTokens tokens;
};

// The transport and the messages belong to the caller and must outlive this object.
class HttpExchange {
 public:
  HttpExchange(HttpTransport& transport, const CMsgContent& request, CMsgContent& reply)
      : transport_(transport),
        request_(request),
        reply_(reply),
        settings_(transport.parameters.Snapshot()) {}

  // Returns the result of the call. Throws std::exception if memory runs out; the result is that of
  // Interrupted() then.
  [[nodiscard]] int Run(const char* server, std::uint32_t port, bool compress);
  [[nodiscard]] int Interrupted() const;

 private:
  // Sends the request and receives the reply over stream_.
  [[nodiscard]] int Talk(RequestFrame& frame);

  HttpTransport& transport_;
  const CMsgContent& request_;
  CMsgContent& reply_;
  HttpSettings settings_;
  std::unique_ptr<KeptConnection> connection_;
  std::optional<HttpStream> stream_;
};

}  // namespace qv::wire
