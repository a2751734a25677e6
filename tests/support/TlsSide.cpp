#include "TlsSide.h"

#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>

namespace qv {

namespace asio = boost::asio;

namespace {

asio::ssl::context& Equip(asio::ssl::context& context, const TestCertificate& certificate) {
  context.use_certificate(asio::buffer(certificate.certificate), asio::ssl::context::pem);
  context.use_private_key(asio::buffer(certificate.key), asio::ssl::context::pem);
  return context;
}

}  // namespace

TlsSide::TlsSide(ServerSide& side, const TestCertificate& certificate)
    : stream_(side.Socket(), Equip(context_, certificate)) {}

bool TlsSide::ShakeHands() {
  boost::system::error_code error;
  stream_.handshake(asio::ssl::stream_base::server, error);
  return !error;
}

bool TlsSide::Read(wire::WritableBytes bytes) {
  boost::system::error_code error;
  asio::read(stream_, asio::buffer(bytes.data(), bytes.size()), error);
  return !error;
}

bool TlsSide::Write(std::initializer_list<wire::Bytes> pieces) {
  boost::system::error_code error;
  for (const wire::Bytes piece : pieces) {
    if (!error) asio::write(stream_, asio::buffer(piece.data(), piece.size()), error);
  }
  return !error;
}

}  // namespace qv
