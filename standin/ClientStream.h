// One client's connection, with deadlines.
#pragma once

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <functional>
#include <vector>

#include "transports/frame/ByteStream.h"

namespace qv::standin {

// Blocks the one thread that serves the client; only Close may be called from another. The object
// outlives both.
class ClientStream : public ByteStream {
 public:
  using Milliseconds = std::chrono::milliseconds;
  using Socket = boost::asio::ip::tcp::socket;

  // A read or write may take `io_timeout` for each mebibyte that it has begun, so that a client
  // that dribbles holds its place for a bounded time.
  explicit ClientStream(Milliseconds io_timeout);

  // Where the connection is accepted into, before anything else is called.
  Socket& Peer() { return socket_; }

  bool Read(WritableBytes bytes) override;
  bool Write(std::initializer_list<Bytes> pieces) override;
  // Waits until the client sends something. False when it went, or sent nothing for so long.
  [[nodiscard]] bool WaitForRequest(Milliseconds longest);
  // Whether the client hung up, broke the rules by sending much before it has its answer, or its
  // connection was closed here.
  [[nodiscard]] bool IsGone();
  // Ends what is being waited for, and everything that follows. Any thread.
  void Close();
  // Closes the connection at once; the serving thread's last call.
  void HangUp();

 private:
  using Error = boost::system::error_code;
  using Handler = std::function<void(const Error&)>;

  // Starts an operation, which calls the handler when it is done, and waits for it.
  [[nodiscard]] bool Complete(const std::function<void(Handler)>& start, Milliseconds longest);

  const Milliseconds io_timeout_;
  std::atomic<bool> closed_ = false;
  // What came while nobody read. An end shows only behind it.
  std::vector<unsigned char> ahead_;
  boost::asio::io_context context_{1};
  Socket socket_{context_};
};

}  // namespace qv::standin
