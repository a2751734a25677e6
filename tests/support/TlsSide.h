// The server's side of a TLS connection, and the certificates for it.
#pragma once

#include <boost/asio/ssl.hpp>
#include <chrono>
#include <string>

#include "ScriptedServer.h"

namespace qv {

// Both in PEM.
struct TestCertificate {
  std::string certificate;
  std::string key;
};

// Makes a self-signed certificate, which is also its own authority. `names` are its subjects, as in
// "IP:127.0.0.1" or "DNS:a.example". It is valid for `lifetime` from now; a negative lifetime has
// already expired.
[[nodiscard]] TestCertificate MakeCertificate(const std::string& names,
                                              std::chrono::seconds lifetime);

class TlsSide final : public wire::ByteStream {
 public:
  TlsSide(ServerSide& side, const TestCertificate& certificate);

  // Returns false if the client rejects the certificate or disconnects.
  bool ShakeHands();
  bool Read(wire::WritableBytes bytes) override;
  bool Write(std::initializer_list<wire::Bytes> pieces) override;

 private:
  boost::asio::ssl::context context_{boost::asio::ssl::context::tls_server};
  boost::asio::ssl::stream<boost::asio::ip::tcp::socket&> stream_;
};

}  // namespace qv
