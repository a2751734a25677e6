#include "HttpTransport.h"

namespace qv {
namespace {

using std::chrono::hours;
using testing::HasSubstr;
using testing::Not;

TEST_F(HttpTransport, TrustsOnlyCertificatesThatAreInOrder) {
  const TestCertificate good = MakeCertificate("IP:127.0.0.1", hours(1));
  const TestCertificate other_name = MakeCertificate("DNS:a.example,IP:127.0.0.2", hours(1));
  const TestCertificate expired = MakeCertificate("IP:127.0.0.1", hours(-1));
  const struct {
    const char* what;
    const TestCertificate& shown;
    const TestCertificate* trusted;  // null: the system's
    int result;
  } cases[] = {
      {"good", good, &good, 0},
      {"another name", other_name, &other_name, -1},
      {"expired", expired, &expired, -1},
      {"unknown issuer", good, &other_name, -1},
      {"unknown to the system", good, nullptr, -1},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    std::atomic<int> arrived{0};
    ScriptedServer server([&](ServerSide& side) {
      TlsSide tls(side, one.shown);
      if (!tls.ShakeHands()) return;
      for (HttpRequestSeen request; ReceiveHttp(tls, request); ++arrived) ReplyHttp(tls, "");
    });
    const std::string ca_file =
        one.trusted != nullptr ? folder_.Write("ca.pem", one.trusted->certificate) : "";
    EXPECT_EQ(Set("ca_file", ca_file), 1);
    EXPECT_EQ(HttpCall().Send(server.Port(), "https://127.0.0.1"), one.result);
    EXPECT_EQ(Set("tls", "1"), 1);
    EXPECT_EQ(HttpCall().Send(server.Port()), one.result);
    EXPECT_EQ(HttpCall().Send(server.Port(), "http://127.0.0.1"), one.result);
    EXPECT_EQ(Set("tls", "0"), 1);
    EXPECT_EQ(server.Connections(), one.result == 0 ? 1 : 3);
    HttpworkTransFini();
    server.WaitForFinished(server.Connections());
    EXPECT_EQ(arrived, one.result == 0 ? 3 : 0);
  }
  ScriptedServer plain(EchoHttp);
  Set("connect_timeout_ms", "50");
  EXPECT_EQ(HttpCall().Send(plain.Port(), "https://127.0.0.1"), -1);
}

TEST_F(HttpTransport, TokensAreKeptAndGoBackToTheirServerOnly) {
  std::string heads[2];
  std::string handed_out[2];
  const auto script = [&](int index) {
    return [&, index](ServerSide& side) {
      for (HttpRequestSeen request; ReceiveHttp(side, request);) {
        heads[index] = request.head;
        ReplyHttp(side, "", nullptr, handed_out[index]);
      }
    };
  };
  ScriptedServer first(script(0));
  ScriptedServer second(script(1));
  EXPECT_EQ(LoginToken(), "");
  EXPECT_EQ(HttpworkLoginToken(nullptr), 0);
  const std::string kHeader = "Qv-Login-Token: ";
  const std::string longest(255, '~');
  const struct {
    int server;
    std::string handed_out;
    const char* name;
    std::string sent;  // with this request
    std::string last;  // after it
  } cases[] = {
      {0, kHeader + "one\r\n", kHttpHost, "", "one"},
      {1, "", kHttpHost, "", "one"},
      {1, "qv-login-token:\t two \r\n", kHttpHost, "", "two"},
      {0, "", "HTTP://127.0.0.1", "one", "two"},
      {0, "", "localhost", "", "two"},
      {1, kHeader + "x\r\n" + kHeader + "three\r\n", kHttpHost, "two", "three"},
      {1, kHeader + "with blank\r\n", kHttpHost, "three", "three"},
      {1, kHeader + "\r\n", kHttpHost, "three", "three"},
      {1, kHeader + "caf\xC3\xA9\r\n", kHttpHost, "three", "three"},
      {1, kHeader + longest + "~\r\n", kHttpHost, "three", "three"},
      {1, kHeader + longest + "\r\n", kHttpHost, "three", longest},
      {1, "", kHttpHost, longest, longest},
      {0, "", kHttpHost, "one", longest},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(&one - cases);
    handed_out[one.server] = one.handed_out;
    HttpCall call;
    EXPECT_EQ(call.Send(one.server == 0 ? first.Port() : second.Port(), one.name), 0);
    const std::string& head = heads[one.server];
    if (one.sent.empty()) {
      EXPECT_THAT(head, Not(HasSubstr("Token")));
    } else {
      EXPECT_THAT(head, HasSubstr("\r\n" + kHeader + one.sent + "\r\n"));
    }
    EXPECT_EQ(LoginToken(), one.last);
  }
  HttpworkTransFini();
  EXPECT_EQ(LoginToken(), "");
  EXPECT_EQ(HttpCall().Send(first.Port()), 0);
  EXPECT_THAT(heads[0], Not(HasSubstr("Token")));
}

TEST_F(HttpTransport, ARedirectIsNotFollowedAndItsTokenNotKept) {
  ScriptedServer other(EchoHttp);
  const std::string there = "http://127.0.0.1:" + std::to_string(other.Port()) + "/qvcall";
  for (const char* const status : {"301 Moved", "302 Found", "307 There", "308 There"}) {
    ScriptedServer server(
        Answering(HttpAnswer("", "Location: " + there + "\r\nQv-Login-Token: stray\r\n", status)));
    EXPECT_EQ(HttpCall().Send(server.Port()), -3) << status;
  }
  EXPECT_EQ(other.Connections(), 0);
  EXPECT_EQ(LoginToken(), "");
}

}  // namespace
}  // namespace qv
