// The server's side of a connection, behind TLS.
#pragma once

#include <boost/asio/ssl.hpp>

#include "ScriptedServer.h"
#include "TestCertificate.h"

namespace qv {

class TlsSide final : public wire::ByteStream {
 public:
  TlsSide(ServerSide& side, const TestCertificate& certificate);

  // False when the client does not like the certificate, or is gone.
  bool ShakeHands();
  bool Read(wire::WritableBytes bytes) override;
  bool Write(std::initializer_list<wire::Bytes> pieces) override;

 private:
  boost::asio::ssl::context context_{boost::asio::ssl::context::tls_server};
  boost::asio::ssl::stream<boost::asio::ip::tcp::socket&> stream_;
};

}  // namespace qv
