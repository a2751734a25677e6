#include "ClientStream.h"

#include <algorithm>
#include <array>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <optional>
#include <utility>
#include <vector>

namespace qv::standin {

namespace {

namespace asio = boost::asio;
using Clock = std::chrono::steady_clock;

// How much is read at once, and how much may come before an answer unless more is allowed.
constexpr std::size_t kMostAhead = 16384;

constexpr ClientStream::Milliseconds kPause{1000};
constexpr ClientStream::Milliseconds kLongestGoodbye{2000};

}  // namespace

ClientStream::ClientStream(Milliseconds io_timeout) : io_timeout_(io_timeout) {
  AllowAhead(kMostAhead);
}

void ClientStream::AllowAhead(std::size_t bytes) {
  most_ahead_ = bytes;
  // So that IsGone() cannot run out of memory. Pages that no byte comes to are never used.
  ahead_.reserve(bytes);
}

ClientStream::Deadline ClientStream::DeadlineFor(std::size_t bytes) const {
  return Clock::now() + io_timeout_ * (1 + static_cast<long long>(bytes >> 20));
}

void ClientStream::NotePeer() {
  Error error;
  const auto peer = socket_.remote_endpoint(error);
  if (error) return;
  const std::string address = peer.address().to_string();
  const std::string host = peer.address().is_v6() ? "[" + address + "]" : address;
  peer_name_ = host + ":" + std::to_string(peer.port());
}

bool ClientStream::Read(wire::WritableBytes bytes) {
  return Read(bytes, DeadlineFor(bytes.size()));
}

bool ClientStream::Read(wire::WritableBytes bytes, Deadline deadline) {
  for (;;) {
    bytes = bytes.subspan(TakeAhead(bytes));
    if (bytes.empty()) return true;
    // A small part of a request comes together with those that follow it.
    if (bytes.size() < kMostAhead) {
      if (!ReceiveAhead(deadline)) return false;
    } else {
      const std::size_t length = Receive(bytes, deadline);
      if (length == 0) return false;
      bytes = bytes.subspan(length);
    }
  }
}

std::size_t ClientStream::ReadSome(wire::WritableBytes bytes, Deadline deadline) {
  const std::size_t length = TakeAhead(bytes);
  return length != 0 || bytes.empty() ? length : Receive(bytes, deadline);
}

std::size_t ClientStream::Receive(wire::WritableBytes bytes, Deadline deadline) {
  if (closed_) return 0;
  const auto arrived = ReadNow(bytes);
  if (!arrived || *arrived != 0) return arrived.value_or(0);
  std::size_t length = 0;
  const auto start = [&](const Handler& done) {
    socket_.async_read_some(asio::buffer(bytes.data(), bytes.size()),
                            [done, &length](const Error& error, std::size_t read) {
                              length = read;
                              done(error);
                            });
  };
  return Complete(Operation::kReads, start, deadline) ? length : 0;
}

bool ClientStream::ReceiveAhead(Deadline deadline) {
  std::array<unsigned char, kMostAhead> piece;
  const std::size_t length = Receive(piece, deadline);
  ahead_.assign(piece.begin(), piece.begin() + length);
  return length != 0;
}

std::size_t ClientStream::TakeAhead(wire::WritableBytes bytes) {
  const std::size_t length = std::min(bytes.size(), ahead_.size() - taken_);
  std::copy_n(ahead_.begin() + static_cast<std::ptrdiff_t>(taken_), length, bytes.begin());
  taken_ += length;
  if (taken_ == ahead_.size()) {
    ahead_.clear();
    taken_ = 0;
  }
  return length;
}

void ClientStream::PutBack(wire::Bytes bytes) {
  ahead_.insert(ahead_.begin() + static_cast<std::ptrdiff_t>(taken_), bytes.begin(), bytes.end());
}

bool ClientStream::Write(std::initializer_list<wire::Bytes> pieces) {
  std::vector<asio::const_buffer> buffers;
  const std::vector<unsigned char> unsent = std::exchange(unsent_, {});
  buffers.emplace_back(unsent.data(), unsent.size());
  for (const wire::Bytes piece : pieces) buffers.emplace_back(piece.data(), piece.size());
  const std::size_t length = asio::buffer_size(buffers);
  Error error = StopBlocking();
  std::size_t sent = error ? 0 : socket_.send(buffers, 0, error);
  if (sent == length) return true;
  if (error && error != asio::error::would_block) return false;
  for (asio::const_buffer& buffer : buffers) {
    const std::size_t gone = std::min(sent, buffer.size());
    buffer += gone;
    sent -= gone;
  }
  const auto start = [&](const Handler& done) {
    asio::async_write(socket_, buffers, [done](const Error& failed, std::size_t) { done(failed); });
  };
  return Complete(Operation::kWrites, start, DeadlineFor(length));
}

void ClientStream::WriteWithNext(wire::Bytes bytes) {
  unsent_.insert(unsent_.end(), bytes.begin(), bytes.end());
}

void ClientStream::WriteSoon(wire::Bytes bytes) {
  if (unsent_.empty()) unsent_.assign(bytes.begin(), bytes.end());
  // A connection that has ended is found by whoever asks for it.
  const std::size_t length = WriteNow(unsent_).value_or(0);
  unsent_.erase(unsent_.begin(), unsent_.begin() + static_cast<std::ptrdiff_t>(length));
}

std::optional<std::size_t> ClientStream::ReadNow(wire::WritableBytes bytes) {
  Error error = StopBlocking();
  const std::size_t length =
      error ? 0 : socket_.receive(asio::buffer(bytes.data(), bytes.size()), 0, error);
  if (error && error != asio::error::would_block) return std::nullopt;
  return length;
}

std::optional<std::size_t> ClientStream::WriteNow(wire::Bytes bytes) {
  Error error = StopBlocking();
  const std::size_t length =
      error ? 0 : socket_.send(asio::buffer(bytes.data(), bytes.size()), 0, error);
  if (error && error != asio::error::would_block) return std::nullopt;
  return length;
}

ClientStream::Error ClientStream::StopBlocking() {
  Error error;
  if (!socket_.non_blocking()) socket_.non_blocking(true, error);
  return error;
}

void ClientStream::EndSending() {
  Error ignored;
  socket_.shutdown(Socket::shutdown_send, ignored);
}

bool ClientStream::WaitForRequest(Milliseconds longest, const std::function<void()>& on_pause) {
  if (!ahead_.empty()) return !closed_;
  const auto start = [&](const Handler& done) { socket_.async_wait(Socket::wait_read, done); };
  return Complete(Operation::kReads, start, Clock::now() + longest, on_pause);
}

bool ClientStream::Complete(Operation operation, const std::function<void(Handler)>& start,
                            Deadline deadline, const std::function<void()>& on_pause) {
  const bool reads = operation == Operation::kReads;
  if (closed_ && reads) return false;
  operation_ = operation;
  deadline_ = reads ? std::min(deadline, reads_until_) : deadline;
  if (closed_) EndOperation();
  std::optional<Error> result;
  context_.restart();
  start([&result](const Error& error) { result = error; });
  if (on_pause && !Await(result, std::min(deadline_, Clock::now() + kPause))) on_pause();
  if (!Await(result, deadline_)) {
    HangUp();
    context_.restart();
    context_.run();  // the handler refers to `result`
  }
  return result.has_value() && !*result;
}

// A handler that Close() posted while no operation ran is executed first, so one run is not enough.
bool ClientStream::Await(const std::optional<Error>& result, const Deadline& until) {
  while (!result && context_.run_one_until(until) != 0) {
  }
  return result.has_value();
}

bool ClientStream::IsGone() {
  if (closed_) return true;
  ahead_.erase(ahead_.begin(), ahead_.begin() + static_cast<std::ptrdiff_t>(taken_));
  taken_ = 0;
  std::array<unsigned char, kMostAhead> piece;
  Error error = StopBlocking();
  while (!error) {
    const std::size_t length = socket_.receive(asio::buffer(piece), 0, error);
    if (ahead_.size() + length > most_ahead_) {
      HangUp();  // the bytes that do not fit are lost, so requests could not be told apart
      floods_ = true;
      return true;
    }
    ahead_.insert(ahead_.end(), piece.begin(), piece.begin() + length);
  }
  return error != asio::error::would_block;
}

std::string_view ClientStream::WhyGone() const {
  if (closed_) return "the server is stopping";
  return floods_ ? "the client sent too much before its answer"
                 : "the client cancelled or disconnected";
}

void ClientStream::SayGoodbye() {
  Error error;
  socket_.shutdown(Socket::shutdown_send, error);
  const Deadline deadline = Clock::now() + std::min(io_timeout_, kLongestGoodbye);
  std::array<unsigned char, kMostAhead> piece;
  while (!error && ReadSome(piece, deadline) != 0) {
  }
}

void ClientStream::Close() {
  closed_ = true;
  asio::post(context_, [this] { EndOperation(); });
}

void ClientStream::EndOperation() {
  if (operation_ == Operation::kReads) return HangUp();
  if (!writes_until_) writes_until_ = Clock::now() + kLongestGoodbye;
  deadline_ = std::min(deadline_, *writes_until_);
}

void ClientStream::HangUp() {
  Error ignored;
  socket_.close(ignored);
}

}  // namespace qv::standin
