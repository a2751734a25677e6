// One HTTP exchange as a stream: writes go to the request's body, reads come from the reply's.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "HttpState.h"
#include "base/curl/Transfer.h"
#include "transports/exchange/ThreadCall.h"
#include "transports/frame/FrameIo.h"

namespace qv::wire {

// A connection to one server that is kept open between calls. Use from one thread at a time. The
// destructor closes it.
class KeptConnection {
 public:
  // Throws std::bad_alloc if libcurl gives no handle.
  explicit KeptConnection(const std::string& url) : url_(url) {}

  // The address that the connection leads to.
  [[nodiscard]] const std::string& Server() const { return url_; }
  // Returns true if there is no connection yet, or if it is idle and nothing unread has arrived.
  // libcurl notices a closed connection itself, but would take unsolicited bytes for the answer to
  // the next request.
  [[nodiscard]] bool IsQuiet() const;
  // Records which connection libcurl keeps. Call it after an exchange, before its stream is
  // destroyed.
  void NoteConnection();

  [[nodiscard]] curl::CurlHandle& Handle() { return handle_; }
  [[nodiscard]] CURL* Easy() const { return handle_.Easy(); }

 private:
  std::string url_;
  curl::CurlHandle handle_;
  // Owned by the multi handle. CURL_SOCKET_BAD if the server closed it.
  curl_socket_t socket_ = CURL_SOCKET_BAD;
};

// The properties of a request besides its body.
struct HttpRequest {
  // Length of the body in bytes.
  std::uint64_t length = 0;
  // The login token for this server, or empty.
  std::string login_token;
  // Whether the server may compress the answer.
  bool compress = false;
  // For a connection that has to be made.
  std::chrono::milliseconds connect_within{};
  CancelQuestion cancel = {};
};

// libcurl runs the exchange on the caller's thread, and only inside Write, Read and End. Between
// them it is paused, so neither body is ever held in memory. Write the whole request before the
// first Read. Use from one thread at a time.
class HttpStream final : public ByteStream, private curl::Handler {
 public:
  // Uses `connection` exclusively until destroyed. Reuse the connection only after End() returned
  // kDone. `settings` outlives this object.
  HttpStream(KeptConnection& connection, const HttpSettings& settings, const HttpRequest& request);
  HttpStream(const HttpStream&) = delete;
  HttpStream& operator=(const HttpStream&) = delete;

  [[nodiscard]] bool Read(WritableBytes bytes) override;
  [[nodiscard]] bool Write(std::initializer_list<Bytes> pieces) override;
  [[nodiscard]] FrameStatus End() override;

  // Returns true if a byte of the request may have reached the server.
  [[nodiscard]] bool HasBegun() const { return transfer_.HasBegun(); }
  // The reason why Read or Write failed: kMalformed if the server's answer cannot carry a frame, or
  // ended before its frame did; otherwise kConnectionLost.
  [[nodiscard]] FrameStatus Failure() const;
  // Why Read, Write or End failed. `peer` is the server as texts name it.
  [[nodiscard]] CallError Error(std::string_view peer) const;
  // Returns true if the server refused the request because it has no place left, so that it did
  // not act on it.
  [[nodiscard]] bool IsBusy() const { return is_busy_; }
  // What the server said of that; any bytes. Valid until this object is destroyed.
  [[nodiscard]] std::string_view BusyReason() const;
  // Returns true if the exchange is over, because it failed or because the answer ended.
  [[nodiscard]] bool HasEnded() const { return transfer_.Outcome().has_value(); }
  [[nodiscard]] bool IsCancelled() const { return is_cancelled_; }
  // The token that the server issued with an answer of status 200, or empty. Valid until this
  // object is destroyed.
  [[nodiscard]] std::string_view LoginToken() const;

 private:
  void SetUp(const HttpRequest& request);

  curl::Next Send(std::span<char> room, std::size_t& count) override;
  bool TakeLine(std::span<const char> line) override;
  curl::Next TakeBody(std::span<const char> bytes) override;
  bool GoesOn(const curl::Progress&) override { return !AskForCancel(); }
  [[nodiscard]] std::chrono::milliseconds LongestWait() const override;
  [[nodiscard]] std::string_view WhyNotConnected() const;
  // Asks whether the call is cancelled, and keeps the answer.
  bool AskForCancel();
  // Returns true if the headers of the final answer announce a body that can carry a frame.
  bool IsFrameAhead();

  KeptConnection& connection_;
  const HttpSettings& settings_;
  const CancelQuestion cancel_;
  curl::Transfer transfer_;

  // The pieces that libcurl has not taken yet.
  std::vector<Bytes> pieces_;
  std::size_t next_piece_ = 0;
  // Destination of the bytes that Read waits for.
  WritableBytes target_;
  // Bytes that arrived with them and belong to the next Read. Receiving is paused while there are
  // any, so one delivery by libcurl is the most that they ever hold.
  std::array<unsigned char, CURL_MAX_WRITE_SIZE> surplus_;
  WritableBytes unread_;

  bool has_all_headers_ = false;
  bool has_status_200_ = false;
  bool is_busy_ = false;
  bool is_cancelled_ = false;
};

}  // namespace qv::wire
