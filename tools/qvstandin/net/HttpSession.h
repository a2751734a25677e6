// Serves one client whose frames travel in HTTP requests.
#pragma once

#include <string_view>

#include "ClientStream.h"
#include "HttpMessage.h"
#include "Session.h"
#include "tools/qvstandin/commands/Command.h"

namespace qv::standin {

// Answers a request before it reads the next one, so a client may send several at once.
class HttpSession {
 public:
  // All three outlive the session.
  HttpSession(ClientStream& stream, Services& services, const SessionRules& rules)
      : stream_(stream), services_(services), rules_(rules) {}

  // Returns when the client is gone, breaks the rules or was told to go, or its stream is closed.
  void Serve();

 private:
  // Each of these tells whether the connection goes on.
  [[nodiscard]] bool ServeRequest();
  [[nodiscard]] bool ServePage(const HttpRequestHead& request);
  [[nodiscard]] bool ServeCall(const HttpRequestHead& request);
  [[nodiscard]] bool Refuse(HttpStatus status, const HttpRequestHead& request,
                            std::string_view allow = {});
  // The end of a connection on which something came that nobody can make sense of.
  [[nodiscard]] bool RefuseMalformed(HttpStatus status);
  [[nodiscard]] bool SendText(HttpReplyHead reply, std::string_view text, HttpMethod method);

  ClientStream& stream_;
  Services& services_;
  const SessionRules& rules_;
};

}  // namespace qv::standin
