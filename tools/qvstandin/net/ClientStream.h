// One client's connection, with deadlines.
#pragma once

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "transports/frame/FrameIo.h"

namespace qv::standin {

// Calls block the one thread that serves the client; only Close() may be called from another
// thread. The object outlives both threads.
class ClientStream : public wire::ByteStream {
 public:
  using Milliseconds = std::chrono::milliseconds;
  using Deadline = std::chrono::steady_clock::time_point;
  using Socket = boost::asio::ip::tcp::socket;

  // A read or write may take `io_timeout` for each started mebibyte, so that a client that sends or
  // receives slowly keeps its place for a bounded time only.
  explicit ClientStream(Milliseconds io_timeout);

  // Accept the connection into this socket before any other call.
  Socket& Peer() { return socket_; }

  // Makes every read end by this time, until the next call; Deadline::max() removes the limit.
  void LimitReads(Deadline until) { reads_until_ = until; }

  // Allows the client to send so many bytes before it has its answer, instead of 16 KiB.
  void AllowAhead(std::size_t bytes);

  // Asks for the client's address. Call it once it is connected.
  void NotePeer();
  // Returns the client's address and port as "127.0.0.1:4000", or "-" if it is unknown.
  [[nodiscard]] const std::string& PeerName() const { return peer_name_; }

  bool Read(wire::WritableBytes bytes) override;
  // Reads before `deadline`, which several reads can share.
  [[nodiscard]] bool Read(wire::WritableBytes bytes, Deadline deadline);
  // Reads the bytes that have arrived, as many as fit, and waits only for the first. Returns their
  // number; 0 if none came.
  [[nodiscard]] std::size_t ReadSome(wire::WritableBytes bytes, Deadline deadline);
  // Returns bytes to the stream; the next reads deliver them again.
  void PutBack(wire::Bytes bytes);
  // Returns the time by which a transfer of this many bytes that begins now must be complete.
  [[nodiscard]] Deadline DeadlineFor(std::size_t bytes) const;
  bool Write(std::initializer_list<wire::Bytes> pieces) override;
  // Sends bytes together with those of the next Write().
  void WriteWithNext(wire::Bytes bytes);
  // Sends bytes without waiting. What the system does not take now is sent before the next Write().
  // Does nothing as long as bytes of an earlier call have not been sent.
  void WriteSoon(wire::Bytes bytes);
  // Read what has arrived and write what the system takes, without waiting. Return the number of
  // bytes, 0 if there is nothing to do now, or nothing if the connection has ended.
  [[nodiscard]] std::optional<std::size_t> ReadNow(wire::WritableBytes bytes);
  [[nodiscard]] std::optional<std::size_t> WriteNow(wire::Bytes bytes);
  // Ends the sending direction.
  void EndSending();
  // Waits until the client sends something. Returns false if it disconnected or sent nothing for
  // `longest`. Calls `on_pause`, unless it is null, after a second without a byte.
  [[nodiscard]] bool WaitForRequest(Milliseconds longest,
                                    const std::function<void()>& on_pause = nullptr);
  // Returns whether the connection is closed on either side. Closes it if the client has sent too
  // much before it received its answer.
  [[nodiscard]] bool IsGone();
  // Returns why IsGone() returned true.
  [[nodiscard]] std::string_view WhyGone() const;
  // Returns whether Close() was called.
  [[nodiscard]] bool IsClosed() const { return closed_; }
  // Makes the read that is waiting fail, and all later ones. What is written then, such as the
  // reason for the end, has two seconds altogether. Any thread may call it.
  void Close();
  // Ends the sending direction and waits briefly for the client to close its own: a connection that
  // is closed while the client sends may lose the reply that is on its way.
  void SayGoodbye();
  // Closes the connection at once. It is the last call of the serving thread.
  void HangUp();

 private:
  using Error = boost::system::error_code;
  using Handler = std::function<void(const Error&)>;

  enum class Operation { kReads, kWrites };

  // Starts an operation, which calls the handler when it is done, and waits for it.
  [[nodiscard]] bool Complete(Operation operation, const std::function<void(Handler)>& start,
                              Deadline deadline, const std::function<void()>& on_pause = nullptr);
  // Waits for the handler that sets `result` until a time that handlers may change. Returns whether
  // it was called.
  [[nodiscard]] bool Await(const std::optional<Error>& result, const Deadline& until);
  // Ends the operation that is running, or gives it a little time, because Close() was called.
  void EndOperation();
  // Does what ReadSome() does when nothing was read ahead.
  [[nodiscard]] std::size_t Receive(wire::WritableBytes bytes, Deadline deadline);
  // Reads ahead when everything read ahead was taken. Returns false if nothing came.
  [[nodiscard]] bool ReceiveAhead(Deadline deadline);
  // Moves the first of what was read ahead to `bytes`, as much as fits. Returns its length.
  [[nodiscard]] std::size_t TakeAhead(wire::WritableBytes bytes);
  // Makes the calls that do not wait return at once.
  [[nodiscard]] Error StopBlocking();

  const Milliseconds io_timeout_;
  std::string peer_name_ = "-";
  std::atomic<bool> closed_ = false;
  bool floods_ = false;  // the client sent too much before it received its answer
  Operation operation_ = Operation::kReads;
  Deadline deadline_;  // of the operation that is running
  Deadline reads_until_ = Deadline::max();
  std::optional<Deadline> writes_until_;  // after Close()
  // Bytes that were received together with others, while a request was executed, or returned by
  // PutBack(). The first `taken_` were consumed. End-of-stream is reported only after all were.
  std::vector<unsigned char> ahead_;
  std::size_t taken_ = 0;
  std::size_t most_ahead_;
  std::vector<unsigned char> unsent_;  // by WriteSoon() or WriteWithNext()
  boost::asio::io_context context_{1};
  Socket socket_{context_};
};

}  // namespace qv::standin
