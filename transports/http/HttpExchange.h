// One call over HTTP: sends the request and receives the reply.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "HttpState.h"
#include "HttpStream.h"
#include "message/MsgContent.h"
#include "transports/exchange/IdlePool.h"
#include "transports/exchange/RequestFrame.h"
#include "transports/exchange/ThreadCall.h"

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
  HttpExchange(HttpTransport& transport, const CMsgContent& request, CMsgContent& reply,
               const ThreadCall& thread)
      : transport_(transport),
        request_(request),
        reply_(reply),
        listener_(thread.progress),
        cancel_(thread.cancel),
        settings_(transport.parameters.Snapshot()) {}

  // Returns the result of the call. Throws std::exception if memory runs out; the result is that of
  // Interrupted() then.
  [[nodiscard]] int Run(const char* server, std::uint32_t port, bool compress);
  [[nodiscard]] int Interrupted() const;
  // The reason that the server gave, or why the call failed; valid after Run.
  [[nodiscard]] const CallError& Error() const { return error_; }

 private:
  using Clock = std::chrono::steady_clock;

  // A connection that has to be made must stand at the deadline.
  [[nodiscard]] int TryOnce(const std::string& url, bool compress, Clock::time_point deadline);
  // Sends the request and receives the reply over stream_.
  [[nodiscard]] int Talk(RequestFrame& frame);
  // Returns the result of a call that the stream ended, `result` if it just failed.
  [[nodiscard]] int Fail(int result);

  HttpTransport& transport_;
  const CMsgContent& request_;
  CMsgContent& reply_;
  const ProgressListener listener_;
  const CancelQuestion cancel_;
  HttpSettings settings_;
  std::string peer_;
  CallError error_;
  bool is_busy_ = false;
  std::unique_ptr<KeptConnection> connection_;
  std::optional<HttpStream> stream_;
};

}  // namespace qv::wire
