// A connection to a server, with deadlines.
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

// A server as the caller named it.
struct Peer {
  std::string server;
  std::uint32_t port = 0;

  bool operator==(const Peer&) const = default;
};

// Use from one thread at a time. The destructor closes the connection.
class SocketConnection final : public ByteStream {
 public:
  // Looks the server up and tries its addresses, all within `timeout`. Returns null if none
  // answered.
  [[nodiscard]] static std::unique_ptr<SocketConnection> Open(const Peer& peer,
                                                              std::chrono::milliseconds timeout);

  // Starts the next exchange. `io_timeout` limits each period without progress.
  void Begin(std::chrono::milliseconds io_timeout);
  // Returns true if a byte of this exchange was passed to the system and may reach the server.
  [[nodiscard]] bool HasWritten() const { return has_written_; }
  // Returns true if the connection is still usable: the server has not closed it, and nothing
  // unread has arrived.
  [[nodiscard]] bool IsQuiet();
  [[nodiscard]] const Peer& Server() const { return peer_; }

  [[nodiscard]] bool Read(WritableBytes bytes) override;
  [[nodiscard]] bool Write(std::initializer_list<Bytes> pieces) override;

 private:
  using Socket = boost::asio::ip::tcp::socket;

  explicit SocketConnection(const Peer& peer) : peer_(peer) {}

  bool Connect(const boost::asio::ip::tcp::endpoint& endpoint,
               std::chrono::steady_clock::time_point deadline);
  // Waits until the socket is ready. Returns false if the deadline passes first.
  bool WaitFor(Socket::wait_type readiness);
  // Runs the operation that was started until `outcome` is set. Closes the socket at `deadline`.
  bool Finish(const std::optional<boost::system::error_code>& outcome,
              std::chrono::steady_clock::time_point deadline);

  Peer peer_;
  boost::asio::io_context context_{1};
  Socket socket_{context_};
  std::chrono::milliseconds io_timeout_{0};
  bool has_written_ = false;
};

}  // namespace qv::wire
