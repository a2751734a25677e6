#include "Sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace qv::bench {

namespace {

int Checked(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

int Open() { return Checked(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"); }

void SendAtOnce(int number) {
  const int on = 1;
  Checked(::setsockopt(number, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on), "setsockopt");
}

}  // namespace

Socket Socket::Connect(std::uint16_t port) {
  Socket socket(Open());
  const sockaddr_in address = Loopback(port);
  Checked(::connect(socket.number_, reinterpret_cast<const sockaddr*>(&address), sizeof address),
          "connect");
  SendAtOnce(socket.number_);
  return socket;
}

Socket Socket::Listen() {
  Socket socket(Open());
  const sockaddr_in address = Loopback(0);
  Checked(::bind(socket.number_, reinterpret_cast<const sockaddr*>(&address), sizeof address),
          "bind");
  Checked(::listen(socket.number_, SOMAXCONN), "listen");
  return socket;
}

Socket::Socket(Socket&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

Socket& Socket::operator=(Socket&& other) noexcept {
  std::swap(number_, other.number_);
  return *this;
}

Socket::~Socket() {
  if (number_ >= 0) ::close(number_);
}

Socket Socket::Accept() const {
  Socket socket(Checked(::accept4(number_, nullptr, nullptr, SOCK_CLOEXEC), "accept"));
  SendAtOnce(socket.number_);
  return socket;
}

std::uint16_t Socket::Port() const {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  Checked(::getsockname(number_, reinterpret_cast<sockaddr*>(&address), &length), "getsockname");
  return ntohs(address.sin_port);
}

void Socket::Send(std::span<const char> bytes) const {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(number_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0) throw std::system_error(errno, std::generic_category(), "send");
    bytes = bytes.subspan(static_cast<std::size_t>(sent));
  }
}

std::size_t Socket::Receive(std::span<char> bytes) const {
  const ssize_t got = ::recv(number_, bytes.data(), bytes.size(), 0);
  if (got < 0) throw std::system_error(errno, std::generic_category(), "recv");
  return static_cast<std::size_t>(got);
}

bool Socket::ReceiveAll(std::span<char> bytes) const {
  while (!bytes.empty()) {
    const std::size_t got = Receive(bytes);
    if (got == 0) return false;
    bytes = bytes.subspan(got);
  }
  return true;
}

void Socket::Shutdown() const { ::shutdown(number_, SHUT_RDWR); }

}  // namespace qv::bench
