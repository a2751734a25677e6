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
  // Returns how many bytes of this exchange were passed to the system and may reach the server.
  [[nodiscard]] std::uint64_t Written() const { return written_; }
  [[nodiscard]] bool HasWritten() const { return written_ != 0; }
  // Returns true if the server closed the connection in order, without a byte in this exchange.
  [[nodiscard]] bool IsClosedWithoutAnswer() const;
  // Returns true if the connection is still usable: the server has not closed it, and nothing
  // unread has arrived.
  [[nodiscard]] bool IsQuiet();
  [[nodiscard]] const Peer& Server() const { return peer_; }

  // The version of the hello that the server answered; 1 if none was said.
  [[nodiscard]] int Version() const { return version_; }
  void SetVersion(int version) { version_ = version; }
  // Numbers requests on and on, so that a late reply is never taken for that to another one.
  [[nodiscard]] std::uint32_t NextNumber() { return ++last_number_; }

  [[nodiscard]] bool Read(WritableBytes bytes) override;
  [[nodiscard]] bool Write(std::initializer_list<Bytes> pieces) override;

  // Queues `pieces`. Push() and Flush() send what is queued, and Read() while it waits.
  void Queue(std::initializer_list<Bytes> pieces);
  // Returns how many bytes of this exchange were queued so far.
  [[nodiscard]] std::uint64_t Queued() const { return written_ + queue_.size() - pushed_; }
  // Sends what the system takes of the queue without waiting. Returns false if that fails.
  [[nodiscard]] bool Push();
  // Waits until the system has taken the first `end` bytes of this exchange.
  [[nodiscard]] bool Flush(std::uint64_t end);
  // Takes the queue and the numbers of another connection, which has written nothing of it.
  void TakeQueue(SocketConnection& other);

  // Why Read, Write, Push or Flush failed.
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
  // Waits until there is something to read, and sends what is queued meanwhile.
  bool WaitToRead();
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
  std::vector<unsigned char> queue_;
  std::size_t pushed_ = 0;     // the first bytes of the queue, which the system has taken
  bool is_push_over_ = false;  // the server takes no more, but may have sent something
  int version_ = 1;
  std::uint32_t last_number_ = 0;
  std::uint64_t written_ = 0;
  bool has_read_ = false;
  bool has_just_written_ = false;
  Trouble trouble_ = Trouble::kNone;
  boost::system::error_code error_;
};

}  // namespace qv::wire
