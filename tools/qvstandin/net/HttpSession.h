// Serves one client that sends its frames in HTTP requests.
#pragma once

#include <string>
#include <string_view>

#include "ClientStream.h"
#include "FrameSession.h"
#include "HttpMessage.h"
#include "tools/qvstandin/commands/Command.h"

namespace qv::standin {

// Answers each request before it reads the next one, so a client may send several at once.
class HttpSession {
 public:
  // The arguments outlive the session.
  HttpSession(ClientStream& stream, Services& services, const SessionRules& rules)
      : stream_(stream), services_(services), rules_(rules) {}

  // Returns when the client is gone or breaks the protocol, when a reply ended the connection, or
  // when the stream is closed.
  void Serve();

 private:
  // Each of these returns whether the connection stays open.
  [[nodiscard]] bool ServeRequest();
  [[nodiscard]] bool ServePage(const HttpRequestHead& request);
  [[nodiscard]] bool ServeCall(const HttpRequestHead& request);
  [[nodiscard]] bool Answer(const HttpRequestHead& request, FrameExchange& exchange);
  [[nodiscard]] bool Refuse(HttpStatus status, const HttpRequestHead& request,
                            std::string_view allow = {});
  // Answers a request that cannot be parsed. Returns false.
  [[nodiscard]] bool RefuseMalformed(HttpStatus status, std::string_view why = {});
  // Records the refusal of a request and returns its text for the client.
  [[nodiscard]] std::string Refusal(HttpStatus status, std::string_view why);
  [[nodiscard]] bool SendText(HttpReplyHead reply, std::string_view text, HttpMethod method);

  ClientStream& stream_;
  Services& services_;
  const SessionRules& rules_;
};

}  // namespace qv::standin
