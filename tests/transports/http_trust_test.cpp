#include <array>

#include "HttpTransport.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/transport/CallControl.h"
#include "tests/support/TlsSide.h"

namespace qv::wire {
namespace {

using std::chrono::hours;

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
    char text[500];
    EXPECT_EQ(HttpworkTransLastError(text, sizeof text),
              one.result == 0 ? error::kNone : error::kCannotConnect);
    EXPECT_THAT(text, testing::HasSubstr(one.result == 0 ? "" : "certificate"));
    EXPECT_EQ(server.Connections(), one.result == 0 ? 1 : 3);
    HttpworkTransFini();
    server.WaitForFinished(server.Connections());
    EXPECT_EQ(arrived, one.result == 0 ? 3 : 0);
  }
  ScriptedServer plain(EchoHttp);
  Set("connect_timeout_ms", "50");
  EXPECT_EQ(HttpCall().Send(plain.Port(), "https://127.0.0.1"), -1);
}

TEST_F(HttpTransport, AnUploadEndsWhenTheServerHangsUpBehindTls) {
  const TestCertificate certificate = MakeCertificate("IP:127.0.0.1", hours(1));
  EXPECT_EQ(Set("ca_file", folder_.Write("ca.pem", certificate.certificate)), 1);
  ScriptedServer leaving([&](ServerSide& side) {
    TlsSide tls(side, certificate);
    std::array<unsigned char, 1000> bytes{};
    if (tls.ShakeHands()) static_cast<void>(tls.Read(bytes));
  });
  HttpCall upload;
  upload.request.SetFileName(folder_.Write("big", std::string(20'000'000, 'u')).c_str(), 1);
  EXPECT_EQ(upload.Send(leaving.Port(), "https://127.0.0.1"), -2);
}

}  // namespace
}  // namespace qv::wire
