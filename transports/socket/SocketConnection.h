// One connection to a server, with deadlines.
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "transports/frame/FrameIo.h"

namespace qv::wire {

// A server as calls name it.
struct Peer {
  std::string server;
  std::uint32_t port = 0;

  bool operator==(const Peer&) const = default;
};

// One thread at a time. Destruction closes.
class SocketConnection final : public ByteStream {
 public:
  // Looks the server up and tries its addresses, all within `timeout`. Null when none answered.
  [[nodiscard]] static std::unique_ptr<SocketConnection> Open(const Peer& peer,
                                                              std::chrono::milliseconds timeout);

  // Starts the next exchange; no stretch without progress in it may be longer than `io_timeout`.
  void Begin(std::chrono::milliseconds io_timeout);
  // Whether a byte of this exchange was handed to the system, and so may reach the server.
  [[nodiscard]] bool HasWritten() const { return has_written_; }
  // Whether the connection lies idle as it should: not closed by the server, and nothing unread.
  [[nodiscard]] bool IsQuiet();
  [[nodiscard]] const Peer& Server() const { return peer_; }

  [[nodiscard]] bool Read(WritableBytes bytes) override;
  [[nodiscard]] bool Write(std::initializer_list<Bytes> pieces) override;

 private:
  using Socket = boost::asio::ip::tcp::socket;

  explicit SocketConnection(const Peer& peer) : peer_(peer) {}

  bool Connect(const boost::asio::ip::tcp::endpoint& endpoint,
               std::chrono::steady_clock::time_point deadline);
  // Waits until the socket is ready. False when it is not within the deadline.
  bool WaitFor(Socket::wait_type readiness);
  // Runs what was started until `outcome` is there; gives it up, and the socket, at `deadline`.
  bool Finish(const std::optional<boost::system::error_code>& outcome,
              std::chrono::steady_clock::time_point deadline);

  Peer peer_;
  boost::asio::io_context context_{1};
  Socket socket_{context_};
  std::chrono::milliseconds io_timeout_{0};
  bool has_written_ = false;
};

}  // namespace qv::wire
