#include "SocketConnection.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <future>
#include <thread>
#include <utility>
#include <vector>

namespace qv::wire {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;
using Endpoints = std::vector<tcp::endpoint>;

Endpoints LookUp(const Peer& peer) {
  asio::io_context context;
  error_code error;
  tcp::resolver resolver(context);
  const auto found = resolver.resolve(peer.server, std::to_string(peer.port),
                                      tcp::resolver::numeric_service, error);
  return {found.begin(), found.end()};
}

// Returns the peer's addresses in the order in which to try them. Returns none if there are none,
// or if the lookup takes longer than `deadline`.
Endpoints Resolve(const Peer& peer, Clock::time_point deadline) {
  if (peer.server.empty() || peer.port == 0 || peer.port > 0xFFFF) return {};
  error_code not_numeric;
  const auto address = asio::ip::make_address(peer.server, not_numeric);
  if (!not_numeric) return {{address, static_cast<std::uint16_t>(peer.port)}};
  // The system's lookup cannot be interrupted, so it runs on a thread that can be abandoned.
  std::packaged_task<Endpoints()> lookup([peer] { return LookUp(peer); });
  std::future<Endpoints> found = lookup.get_future();
  std::thread(std::move(lookup)).detach();
  if (found.wait_until(deadline) != std::future_status::ready) return {};
  return found.get();
}

bool WouldBlock(const error_code& error) {
  return error == asio::error::would_block || error == asio::error::try_again ||
         error == asio::error::interrupted;
}

std::vector<asio::const_buffer> Buffers(std::initializer_list<Bytes> pieces) {
  std::vector<asio::const_buffer> buffers;
  buffers.reserve(pieces.size());
  for (const Bytes piece : pieces) {
    if (!piece.empty()) buffers.emplace_back(piece.data(), piece.size());
  }
  return buffers;
}

// Removes the first `count` bytes.
void Advance(std::vector<asio::const_buffer>& buffers, std::size_t count) {
  auto first = buffers.begin();
  for (; first != buffers.end() && count >= first->size(); ++first) count -= first->size();
  if (first != buffers.end()) *first += count;
  buffers.erase(buffers.begin(), first);
}

}  // namespace

std::unique_ptr<SocketConnection> SocketConnection::Open(const Peer& peer,
                                                         std::chrono::milliseconds timeout) {
  const Clock::time_point deadline = Clock::now() + timeout;
  for (const tcp::endpoint& endpoint : Resolve(peer, deadline)) {
    std::unique_ptr<SocketConnection> connection(new SocketConnection(peer));
    if (connection->Connect(endpoint, deadline)) return connection;
  }
  return nullptr;
}

bool SocketConnection::Connect(const tcp::endpoint& endpoint, Clock::time_point deadline) {
  std::optional<error_code> outcome;
  socket_.async_connect(endpoint, [&](const error_code& error) { outcome = error; });
  if (!Finish(outcome, deadline)) return false;
  error_code error;
  // A request is a single write, so delaying it to collect more bytes gains nothing.
  socket_.set_option(tcp::no_delay(true), error);
  socket_.non_blocking(true, error);
  return !error;
}

void SocketConnection::Begin(std::chrono::milliseconds io_timeout) {
  io_timeout_ = io_timeout;
  has_written_ = false;
}

bool SocketConnection::IsQuiet() {
  unsigned char byte = 0;
  error_code error;
  socket_.receive(asio::buffer(&byte, 1), Socket::message_peek, error);
  return WouldBlock(error);
}

bool SocketConnection::Read(WritableBytes bytes) {
  while (!bytes.empty()) {
    error_code error;
    const std::size_t count = socket_.read_some(asio::buffer(bytes.data(), bytes.size()), error);
    bytes = bytes.subspan(count);
    if (!error) continue;
    if (!WouldBlock(error) || !WaitFor(Socket::wait_read)) return false;
  }
  return true;
}

bool SocketConnection::Write(std::initializer_list<Bytes> pieces) {
  std::vector<asio::const_buffer> buffers = Buffers(pieces);
  while (!buffers.empty()) {
    error_code error;
    const std::size_t count = socket_.write_some(buffers, error);
    has_written_ = has_written_ || count != 0;
    Advance(buffers, count);
    if (!error) continue;
    if (!WouldBlock(error) || !WaitFor(Socket::wait_write)) return false;
  }
  return true;
}

bool SocketConnection::WaitFor(Socket::wait_type readiness) {
  std::optional<error_code> outcome;
  socket_.async_wait(readiness, [&](const error_code& error) { outcome = error; });
  return Finish(outcome, Clock::now() + io_timeout_);
}

bool SocketConnection::Finish(const std::optional<error_code>& outcome,
                              Clock::time_point deadline) {
  context_.restart();
  context_.run_until(deadline);
  if (!outcome) {
    // The handler still refers to the caller's variables. Closing the socket makes it run now.
    error_code ignored;
    socket_.close(ignored);
    context_.restart();
    context_.run();
    return false;
  }
  return !*outcome;
}

}  // namespace qv::wire
