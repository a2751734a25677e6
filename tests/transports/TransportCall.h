// Calls and answers that the tests of both transports share.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "message/MsgContent.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/TempFolder.h"

namespace qv::wire {

struct TransportCall {
  explicit TransportCall(unsigned int size = 4096) : TransportCall(size, size) {}
  TransportCall(unsigned int request_size, unsigned int reply_size)
      : request_block(request_size), reply_block(reply_size) {
    request.SetCommand(200);
  }
  std::string Answer() { return std::string(reply.GetString(nullptr)); }

  CAutoBuf request_block;
  CAutoBuf reply_block;
  CMsgContent request{request_block};
  CMsgContent reply{reply_block};
};

// 3,000,001 bytes, in which no two chunks are equal.
inline std::string LongBytes() {
  std::string bytes(3'000'001, '\0');
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    bytes[at] = static_cast<char>(at * 7 + at / 251);
  }
  return bytes;
}

// Returns a port on which nobody listens.
inline std::uint16_t DeadPort() {
  boost::asio::io_context context;
  return boost::asio::ip::tcp::acceptor(context, {boost::asio::ip::address_v4::loopback(), 0})
      .local_endpoint()
      .port();
}

// Once the queue of a listener is full, its system does not answer further attempts.
class FullListener {
 public:
  FullListener() {
    acceptor_.bind({boost::asio::ip::address_v4::loopback(), 0});
    acceptor_.listen(0);
    first_.connect(acceptor_.local_endpoint());
  }
  [[nodiscard]] std::uint16_t Port() const { return acceptor_.local_endpoint().port(); }

 private:
  boost::asio::io_context context_;
  boost::asio::ip::tcp::acceptor acceptor_{context_, boost::asio::ip::tcp::v4()};
  boost::asio::ip::tcp::socket first_{context_};
};

}  // namespace qv::wire
