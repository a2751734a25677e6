#include "SocketConnection.h"

#include <algorithm>
#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <future>
#include <thread>
#include <utility>
#include <vector>

#include "transports/exchange/CallError.h"
#include "transports/exchange/Waiting.h"

namespace qv::wire {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;
using Endpoints = std::vector<tcp::endpoint>;

struct Addresses {
  Endpoints endpoints;
  error_code error;
};

Addresses LookUp(const Peer& peer) {
  asio::io_context context;
  Addresses addresses;
  tcp::resolver resolver(context);
  const auto found = resolver.resolve(peer.server, std::to_string(peer.port),
                                      tcp::resolver::numeric_service, addresses.error);
  addresses.endpoints.assign(found.begin(), found.end());
  return addresses;
}

// The same words on every system for what happens every day.
std::string TextOf(const error_code& error) {
  if (error == asio::error::connection_refused) return "connection refused";
  if (error == asio::error::host_not_found || error == asio::error::no_data) return "no such host";
  if (error == asio::error::host_not_found_try_again) return "the host's name cannot be looked up";
  if (error == asio::error::host_unreachable || error == asio::error::network_unreachable) {
    return "no route to the host";
  }
  if (error == asio::error::timed_out) return "no answer";
  if (error == asio::error::connection_reset || error == asio::error::connection_aborted ||
      error == asio::error::broken_pipe) {
    return "the connection was reset";
  }
  if (error == asio::error::eof) return "the server closed it";
  return error.message();
}

template <class Result>
bool IsReady(std::future<Result>& future, const SocketConnection::Patience& patience) {
  if (!patience.cancel.IsSet()) {
    return future.wait_until(patience.deadline) == std::future_status::ready;
  }
  while (!patience.cancel.Ask() && Clock::now() < patience.deadline) {
    if (future.wait_for(kCancelSlice) == std::future_status::ready) return true;
  }
  return false;
}

// Returns the peer's addresses in the order in which to try them. Returns none, and sets `why`, if
// there are none or the lookup takes too long.
Endpoints Resolve(const Peer& peer, const SocketConnection::Patience& patience, std::string& why) {
  if (peer.server.empty() || peer.port == 0 || peer.port > 0xFFFF) {
    why = peer.server.empty() ? "no server is set" : "no such port";
    return {};
  }
  error_code not_numeric;
  const auto address = asio::ip::make_address(peer.server, not_numeric);
  if (!not_numeric) return {{address, static_cast<std::uint16_t>(peer.port)}};
  // The system's lookup cannot be interrupted, so it runs on a thread that can be abandoned.
  std::packaged_task<Addresses()> lookup([peer] { return LookUp(peer); });
  std::future<Addresses> found = lookup.get_future();
  std::thread(std::move(lookup)).detach();
  why = "the host's name was not looked up in time";
  if (!IsReady(found, patience)) return {};
  Addresses addresses = found.get();
  if (addresses.endpoints.empty()) why = TextOf(addresses.error);
  return std::move(addresses.endpoints);
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

std::unique_ptr<SocketConnection> SocketConnection::Open(const Peer& peer, const Patience& patience,
                                                         std::string& why) {
  for (const tcp::endpoint& endpoint : Resolve(peer, patience, why)) {
    std::unique_ptr<SocketConnection> connection(new SocketConnection(peer));
    if (connection->Connect(endpoint, patience)) return connection;
    why = connection->trouble_ == Trouble::kLost ? TextOf(connection->error_) : "no answer";
  }
  if (patience.cancel.Ask()) why.clear();
  return nullptr;
}

bool SocketConnection::Connect(const tcp::endpoint& endpoint, const Patience& patience) {
  cancel_ = patience.cancel;
  std::optional<error_code> outcome;
  socket_.async_connect(endpoint, [&](const error_code& error) { outcome = error; });
  if (!Finish(outcome, patience.deadline)) return false;
  error_code error;
  // A request is a single write, so delaying it to collect more bytes gains nothing.
  socket_.set_option(tcp::no_delay(true), error);
  socket_.non_blocking(true, error);
  return !error || Fail(error);
}

void SocketConnection::Begin(std::chrono::milliseconds io_timeout, const CancelQuestion& cancel) {
  io_timeout_ = io_timeout;
  deadline_ = Clock::time_point::max();
  cancel_ = cancel;
  queue_ = {};
  pushed_ = 0;
  is_push_over_ = false;
  written_ = 0;
  has_read_ = false;
}

void SocketConnection::BeginHandshake(const Patience& patience) {
  Begin(std::chrono::hours(1), patience.cancel);
  deadline_ = patience.deadline;
}

bool SocketConnection::IsQuiet() {
  if (!ahead_.empty()) return false;
  unsigned char byte = 0;
  error_code error;
  socket_.receive(asio::buffer(&byte, 1), Socket::message_peek, error);
  return WouldBlock(error);
}

bool SocketConnection::Read(WritableBytes bytes) {
  const std::size_t at_hand = std::min(ahead_.size(), bytes.size());
  std::copy_n(ahead_.begin(), at_hand, bytes.begin());
  ahead_ = ahead_.subspan(at_hand);
  bytes = bytes.subspan(at_hand);
  // What answers a request is not there yet when the request has just left.
  if (!bytes.empty() && std::exchange(has_just_written_, false) && !WaitToRead()) {
    return false;
  }
  while (!bytes.empty()) {
    if (IsCancelled()) return false;
    error_code error;
    const std::size_t count = ReadSome(bytes, error);
    has_read_ = has_read_ || count != 0;
    bytes = bytes.subspan(count);
    if (error && !(WouldBlock(error) ? WaitToRead() : Fail(error))) return false;
  }
  return true;
}

bool SocketConnection::WaitToRead() {
  const bool sends = !queue_.empty() && !is_push_over_;
  if (!WaitFor(sends ? Event::kEither : Event::kReadable)) return false;
  // What the server sent before it ceased to receive can be read all the same.
  if (sends && !Push()) is_push_over_ = true;
  return true;
}

std::size_t SocketConnection::ReadSome(WritableBytes bytes, error_code& error) {
  const std::array<asio::mutable_buffer, 2> room = {asio::buffer(bytes.data(), bytes.size()),
                                                    asio::buffer(ahead_room_)};
  const std::size_t count = socket_.read_some(room, error);
  if (count <= bytes.size()) return count;
  ahead_ = WritableBytes(ahead_room_).first(count - bytes.size());
  return bytes.size();
}

bool SocketConnection::Write(std::initializer_list<Bytes> pieces) {
  std::vector<asio::const_buffer> buffers = Buffers(pieces);
  has_just_written_ = true;
  while (!buffers.empty()) {
    if (IsCancelled()) return false;
    error_code error;
    const std::size_t count = socket_.write_some(buffers, error);
    written_ += count;
    Advance(buffers, count);
    if (error && !(WouldBlock(error) ? WaitFor(Event::kWritable) : Fail(error))) return false;
  }
  return true;
}

void SocketConnection::Queue(std::initializer_list<Bytes> pieces) {
  queue_.erase(queue_.begin(), queue_.begin() + static_cast<std::ptrdiff_t>(pushed_));
  pushed_ = 0;
  for (const Bytes piece : pieces) queue_.insert(queue_.end(), piece.begin(), piece.end());
}

bool SocketConnection::Push() {
  while (!queue_.empty()) {
    error_code error;
    const Bytes left = Bytes(queue_).subspan(pushed_);
    const std::size_t count = socket_.write_some(asio::buffer(left.data(), left.size()), error);
    has_just_written_ = has_just_written_ || count != 0;
    written_ += count;
    pushed_ += count;
    if (count == left.size()) {
      queue_ = {};  // frees a large request
      pushed_ = 0;
    }
    if (error) return WouldBlock(error) || Fail(error);
  }
  return true;
}

bool SocketConnection::Flush(std::uint64_t end) {
  while (written_ < end) {
    if (IsCancelled() || queue_.empty() || !Push()) return false;
    if (written_ < end && !WaitFor(Event::kWritable)) return false;
  }
  return true;
}

void SocketConnection::TakeQueue(SocketConnection& other) {
  queue_ = std::exchange(other.queue_, {});
  last_number_ = other.last_number_;
}

bool SocketConnection::WaitFor(Event event) {
  using std::chrono::milliseconds;
  const auto socket = static_cast<std::uintptr_t>(socket_.native_handle());
  const Clock::time_point deadline = std::min(Clock::now() + io_timeout_, deadline_);
  while (!IsCancelled()) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
    if (left <= milliseconds::zero()) {
      trouble_ = Trouble::kTooLate;
      return false;
    }
    const milliseconds slice = cancel_.IsSet() ? std::min(left, kCancelSlice) : left;
    int system_error = 0;
    const platform::SocketWait waited = platform::WaitForSocket(socket, event, slice, system_error);
    if (waited == platform::SocketWait::kReady) return true;
    if (waited == platform::SocketWait::kFailed) {
      return Fail({system_error, boost::system::system_category()});
    }
  }
  return false;
}

bool SocketConnection::Finish(const std::optional<error_code>& outcome,
                              Clock::time_point deadline) {
  RunUntil(outcome, deadline);
  if (outcome) return !*outcome || Fail(*outcome);
  if (trouble_ == Trouble::kNone) trouble_ = Trouble::kTooLate;
  // The handler still refers to the caller's variables. Closing the socket makes it run now.
  error_code ignored;
  socket_.close(ignored);
  context_.restart();
  context_.run();
  return false;
}

void SocketConnection::RunUntil(const std::optional<error_code>& outcome,
                                Clock::time_point deadline) {
  context_.restart();
  if (!cancel_.IsSet()) {
    context_.run_until(deadline);
    return;
  }
  while (!outcome && !IsCancelled() && Clock::now() < deadline) {
    context_.run_until(std::min(deadline, Clock::now() + kCancelSlice));
  }
}

bool SocketConnection::IsCancelled() {
  if (trouble_ != Trouble::kCancelled && cancel_.Ask()) trouble_ = Trouble::kCancelled;
  return trouble_ == Trouble::kCancelled;
}

bool SocketConnection::Fail(const error_code& error) {
  trouble_ = Trouble::kLost;
  error_ = error;
  return false;
}

bool SocketConnection::IsClosedWithoutAnswer() const {
  return trouble_ == Trouble::kLost && error_ == asio::error::eof && !has_read_;
}

std::string SocketConnection::WhyLost() const { return TextOf(error_); }

CallError SocketConnection::Error() const {
  switch (trouble_) {
    case Trouble::kTooLate:
      return NoProgress(io_timeout_);
    case Trouble::kCancelled:
      return Cancelled();
    case Trouble::kLost:
    case Trouble::kNone:
      break;
  }
  return ConnectionLost(NameOf(peer_.server, peer_.port), WhyLost());
}

}  // namespace qv::wire
