// A connection to a server, with deadlines.
#pragma once

#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/platform/SocketWait.h"
#include "transports/exchange/ThreadCall.h"
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
  using Clock = std::chrono::steady_clock;

  // How long an attempt to connect may take, and who may end it earlier.
  struct Patience {
    Clock::time_point deadline;
    CancelQuestion cancel;
  };
  // Looks the server up and tries its addresses. Returns null if none answered, and sets `why`,
  // which is empty if the attempt was cancelled.
  [[nodiscard]] static std::unique_ptr<SocketConnection> Open(const Peer& peer,
                                                              const Patience& patience,
                                                              std::string& why);

  // Starts the next exchange. `io_timeout` limits each period without progress.
  void Begin(std::chrono::milliseconds io_timeout, const CancelQuestion& cancel);
  // Starts the handshake after Open, which must be over at the deadline.
  void BeginHandshake(const Patience& patience);
  // Returns true if a byte of this exchange was passed to the system and may reach the server.
  [[nodiscard]] bool HasWritten() const { return has_written_; }
  // Returns true if the server closed the connection in order, without a byte in this exchange.
  [[nodiscard]] bool IsClosedWithoutAnswer() const;
  // Returns true if the connection is still usable: the server has not closed it, and nothing
  // unread has arrived.
  [[nodiscard]] bool IsQuiet();
  [[nodiscard]] const Peer& Server() const { return peer_; }

  // Whether the server answered a hello, so that it may send frames of version 2.
  [[nodiscard]] bool TakesVersion2() const { return takes_version_2_; }
  void SetTakesVersion2() { takes_version_2_ = true; }

  [[nodiscard]] bool Read(WritableBytes bytes) override;
  [[nodiscard]] bool Write(std::initializer_list<Bytes> pieces) override;

  // Why Read or Write failed.
  enum class Trouble { kNone, kTooLate, kCancelled, kLost };
  [[nodiscard]] Trouble LastTrouble() const { return trouble_; }
  [[nodiscard]] CallError Error() const;
  // The system's words for what ended the connection.
  [[nodiscard]] std::string WhyLost() const;

 private:
  using Socket = boost::asio::ip::tcp::socket;

  explicit SocketConnection(const Peer& peer) : peer_(peer) {}

  bool Connect(const boost::asio::ip::tcp::endpoint& endpoint, const Patience& patience);
  using Event = platform::SocketEvent;
  // Reads what is there, at most `bytes` and what may be read ahead; returns how many of `bytes` it
  // filled.
  std::size_t ReadSome(WritableBytes bytes, boost::system::error_code& error);
  // Waits until the socket is ready. Returns false if the deadline passes first, the call is
  // cancelled, or the system cannot wait.
  bool WaitFor(Event event);
  // The same after `error`; returns false also if that says more than that the socket is not ready.
  bool WaitAfter(const boost::system::error_code& error, Event event);
  // Connecting: runs the operation that was started until `outcome` is set. Closes the socket at
  // `deadline`, or when the call is cancelled.
  bool Finish(const std::optional<boost::system::error_code>& outcome, Clock::time_point deadline);
  void RunUntil(const std::optional<boost::system::error_code>& outcome,
                Clock::time_point deadline);
  // Returns true, and notes it, if the call is cancelled.
  bool IsCancelled();
  bool Fail(const boost::system::error_code& error);

  Peer peer_;
  boost::asio::io_context context_{1};
  Socket socket_{context_};
  std::chrono::milliseconds io_timeout_{0};
  Clock::time_point deadline_ = Clock::time_point::max();
  CancelQuestion cancel_;
  // Bytes that arrived with those that were read, so that a small reply is read at once.
  std::array<unsigned char, 16384> ahead_room_;
  WritableBytes ahead_;
  bool takes_version_2_ = false;
  bool has_written_ = false;
  bool has_read_ = false;
  bool has_just_written_ = false;
  Trouble trouble_ = Trouble::kNone;
  boost::system::error_code error_;
};

}  // namespace qv::wire
