#include "ClientStream.h"

#include <algorithm>
#include <array>
#include <boost/asio/post.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <memory>
#include <optional>
#include <vector>

namespace qv::standin {

namespace {

namespace asio = boost::asio;

constexpr std::size_t kMostAhead = 16384;

ClientStream::Milliseconds TimeFor(std::size_t bytes, ClientStream::Milliseconds per_mebibyte) {
  return per_mebibyte * (1 + static_cast<long long>(bytes >> 20));
}

}  // namespace

ClientStream::ClientStream(Milliseconds io_timeout) : io_timeout_(io_timeout) {
  ahead_.reserve(kMostAhead);  // IsGone shall not fail for want of memory
}

bool ClientStream::Read(WritableBytes bytes) {
  const std::size_t here = std::min(bytes.size(), ahead_.size());
  const auto end_of_here = ahead_.begin() + static_cast<std::ptrdiff_t>(here);
  std::copy(ahead_.begin(), end_of_here, bytes.begin());
  ahead_.erase(ahead_.begin(), end_of_here);
  bytes = bytes.subspan(here);
  if (bytes.empty()) return true;
  const auto start = [&](Handler done) {
    asio::async_read(socket_, asio::buffer(bytes.data(), bytes.size()),
                     [done](const Error& error, std::size_t) { done(error); });
  };
  return Complete(start, TimeFor(bytes.size(), io_timeout_));
}

bool ClientStream::Write(std::initializer_list<Bytes> pieces) {
  std::vector<asio::const_buffer> buffers;
  for (const Bytes piece : pieces) buffers.emplace_back(piece.data(), piece.size());
  const auto start = [&](Handler done) {
    asio::async_write(socket_, buffers, [done](const Error& error, std::size_t) { done(error); });
  };
  return Complete(start, TimeFor(asio::buffer_size(buffers), io_timeout_));
}

bool ClientStream::WaitForRequest(Milliseconds longest) {
  if (!ahead_.empty()) return !closed_;
  const auto start = [&](Handler done) { socket_.async_wait(Socket::wait_read, done); };
  return Complete(start, longest);
}

bool ClientStream::Complete(const std::function<void(Handler)>& start, Milliseconds longest) {
  if (closed_) return false;
  std::optional<Error> result;
  context_.restart();
  start([&result](const Error& error) { result = error; });
  const auto deadline = std::chrono::steady_clock::now() + longest;
  // A close that was asked for while nobody waited runs here first, so one turn is not enough.
  while (!result && context_.run_one_until(deadline) != 0) {
  }
  if (!result) {
    HangUp();
    context_.restart();
    context_.run();  // the handler refers to `result`
  }
  return result.has_value() && !*result;
}

bool ClientStream::IsGone() {
  if (closed_) return true;
  Error error;
  std::array<unsigned char, kMostAhead> piece;
  socket_.non_blocking(true, error);
  while (!error) {
    const std::size_t length = socket_.receive(asio::buffer(piece), 0, error);
    if (ahead_.size() + length > kMostAhead) return true;
    ahead_.insert(ahead_.end(), piece.begin(), piece.begin() + length);
  }
  return error != asio::error::would_block;
}

void ClientStream::Close() {
  closed_ = true;
  asio::post(context_, [this] { HangUp(); });
}

void ClientStream::HangUp() {
  Error ignored;
  socket_.close(ignored);
}

}  // namespace qv::standin
