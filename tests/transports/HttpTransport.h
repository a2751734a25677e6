// What the tests of the HTTP transport share.
#pragma once

#include <gmock/gmock.h>

#include <string>

#include "TransportCall.h"
#include "qvnetcall/transport/HttpParameters.h"
#include "qvnetcall/transport/QvHttpClient.h"
#include "tests/support/HttpSide.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/System.h"

namespace qv::wire {

inline constexpr const char* kHttpHost = "127.0.0.1";

struct HttpCall : TransportCall {
  using TransportCall::TransportCall;
  int Send(std::uint32_t port, const char* server = kHttpHost, int compress = 0) {
    return HttpworkTransMsg(server, port, request, reply, compress);
  }
};

inline std::string LoginToken() {
  char token[256] = "old";
  const int result = HttpworkLoginToken(token);
  EXPECT_EQ(result, *token != '\0' ? 1 : 0);
  return token;
}

inline int Set(const char* name, const std::string& value) {
  return HttpworkSetParameter(name, value.c_str());
}

class HttpTransport : public testing::Test {
 protected:
  HttpTransport() {
    // The transport must ignore the proxies that the environment names.
    for (const char* const name : {"http_proxy", "https_proxy", "all_proxy"}) {
      SetVariable(name, "http://127.0.0.1:1");
    }
    HttpworkTransInit();
  }
  ~HttpTransport() override {
    HttpworkTransFini();
    const std::pair<const char*, const char*> defaults[] = {{"token", ""},
                                                            {"tls", "0"},
                                                            {"ca_file", ""},
                                                            {"connect_timeout_ms", "5000"},
                                                            {"io_timeout_ms", "30000"}};
    for (const auto& [name, value] : defaults) EXPECT_EQ(Set(name, value), 1) << name;
  }

  TempFolder folder_;
};

// Reads one request and sends the bytes of `answer`.
inline ScriptedServer::Script Answering(const std::string& answer) {
  return [answer](ServerSide& side) {
    HttpRequestSeen request;
    if (ReceiveHttp(side, request)) side.Write({BytesOfText(answer)});
  };
}

}  // namespace qv::wire
