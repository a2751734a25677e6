#include "ClientStream.h"

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

ClientStream::Milliseconds TimeFor(std::size_t bytes, ClientStream::Milliseconds per_mebibyte) {
  return per_mebibyte * (1 + static_cast<long long>(bytes >> 20));
}

}  // namespace

bool ClientStream::Read(WritableBytes bytes) {
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
  std::array<char, 1> byte;
  socket_.non_blocking(true, error);
  socket_.receive(asio::buffer(byte), Socket::message_peek, error);
  return error && error != asio::error::would_block;
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
