#include "Listener.h"

#include <exception>
#include <utility>

namespace qv::standin {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr std::chrono::milliseconds kAcceptPause{100};

}  // namespace

Listener::Listener(asio::io_context& context, std::chrono::milliseconds io_timeout, Admit admit)
    : io_timeout_(io_timeout), admit_(std::move(admit)), acceptor_(context), pause_(context) {}

bool Listener::Open(const std::string& address, std::uint16_t port, std::string& error) {
  boost::system::error_code code;
  const tcp::endpoint endpoint(asio::ip::make_address(address, code), port);
  if (!code) acceptor_.open(endpoint.protocol(), code);
  if (!code) acceptor_.set_option(tcp::acceptor::reuse_address(true), code);
  if (!code) acceptor_.bind(endpoint, code);
  if (!code) acceptor_.listen(asio::socket_base::max_listen_connections, code);
  if (!code) port_ = acceptor_.local_endpoint(code).port();
  if (code) {
    error = "cannot listen on " + address + ":" + std::to_string(port) + ": " + code.message();
    return false;
  }
  AcceptNext();
  return true;
}

void Listener::AcceptNext() {
  if (closed_) return;
  std::unique_ptr<ClientStream> stream;
  try {
    stream = std::make_unique<ClientStream>(io_timeout_);
  } catch (const std::exception&) {
    return AcceptLater();
  }
  auto& peer = stream->Peer();
  acceptor_.async_accept(peer, [this, stream = std::move(stream)](const auto& error) mutable {
    if (error) return AcceptLater();
    if (!closed_) admit_(std::move(stream));
    AcceptNext();
  });
}

// Without memory or a file descriptor for a connection, an immediate retry would fail as well.
void Listener::AcceptLater() {
  if (closed_) return;
  pause_.expires_after(kAcceptPause);
  pause_.async_wait([this](const auto&) { AcceptNext(); });
}

void Listener::Close() {
  closed_ = true;
  boost::system::error_code ignored;
  acceptor_.close(ignored);
  pause_.cancel();
}

}  // namespace qv::standin
