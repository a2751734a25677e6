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
class ClientStream : public wire::ByteStream {
 public:
  using Milliseconds = std::chrono::milliseconds;
  using Deadline = std::chrono::steady_clock::time_point;
  using Socket = boost::asio::ip::tcp::socket;

  // A read or write may take `io_timeout` for each mebibyte that it has begun, so that a client
  // that dribbles holds its place for a bounded time.
  explicit ClientStream(Milliseconds io_timeout);

  // Where the connection is accepted into, before anything else is called.
  Socket& Peer() { return socket_; }

  bool Read(wire::WritableBytes bytes) override;
  // The same by a deadline that several reads can share.
  [[nodiscard]] bool Read(wire::WritableBytes bytes, Deadline deadline);
  // Reads what there is, up to so many bytes, and waits only for the first. 0 when none came.
  [[nodiscard]] std::size_t ReadSome(wire::WritableBytes bytes, Deadline deadline);
  // Takes back what was read last, to be read again.
  void PutBack(wire::Bytes bytes);
  // By when so many bytes must have come.
  [[nodiscard]] Deadline DeadlineFor(std::size_t bytes) const;
  bool Write(std::initializer_list<wire::Bytes> pieces) override;
  // Waits until the client sends something. False when it went, or sent nothing for so long.
  [[nodiscard]] bool WaitForRequest(Milliseconds longest);
  // Whether the client hung up, or its connection was closed here; which is what happens when it
  // breaks the rules by sending much before it has its answer.
  [[nodiscard]] bool IsGone();
  // Ends what is being waited for, and everything that follows. Any thread.
  void Close();
  // Says that nothing more will be sent, and waits a little for the client to see it: one that is
  // hung up on while it sends may lose what was sent to it.
  void SayGoodbye();
  // Closes the connection at once; the serving thread's last call.
  void HangUp();

 private:
  using Error = boost::system::error_code;
  using Handler = std::function<void(const Error&)>;

  // Starts an operation, which calls the handler when it is done, and waits for it.
  [[nodiscard]] bool Complete(const std::function<void(Handler)>& start, Deadline deadline);
  // Takes up to so many of the bytes that came while nobody read.
  [[nodiscard]] std::size_t TakeAhead(wire::WritableBytes bytes);

  const Milliseconds io_timeout_;
  std::atomic<bool> closed_ = false;
  // What came while nobody read. An end shows only behind it.
  std::vector<unsigned char> ahead_;
  boost::asio::io_context context_{1};
  Socket socket_{context_};
};

}  // namespace qv::standin
