// One HTTP exchange as a stream: what is written is the request's body, what is read the reply's.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "HttpState.h"
#include "base/curl/CurlHandle.h"
#include "base/curl/Transfer.h"
#include "transports/frame/FrameIo.h"

namespace qv::wire {

// A connection to one server that is kept open between calls. One thread at a time. Destruction
// closes.
class KeptConnection {
 public:
  // Throws std::bad_alloc when there can be none.
  explicit KeptConnection(const std::string& url) : url_(url) {}

  // The address that it is for.
  [[nodiscard]] const std::string& Server() const { return url_; }
  // Whether the connection, if there is any yet, lies idle as it should. libcurl looks for one that
  // was closed, but would take what a server sent unasked for the answer to the next request.
  [[nodiscard]] bool IsQuiet() const;
  // To be called when an exchange is over and still set up: notes which connection is kept.
  void NoteConnection();

  [[nodiscard]] curl::CurlHandle& Handle() { return handle_; }
  [[nodiscard]] CURL* Easy() const { return handle_.Easy(); }

 private:
  std::string url_;
  curl::CurlHandle handle_;
  // The multi handle's; CURL_SOCKET_BAD when the server closed it.
  curl_socket_t socket_ = CURL_SOCKET_BAD;
};

// What a request says beside its body.
struct HttpRequest {
  // The bytes of the body.
  std::uint64_t length = 0;
  // A login token for this server; may be empty.
  std::string login_token;
  // Whether packed answers are welcome.
  bool compress = false;
};

// libcurl runs the exchange on the caller's thread, and only inside Write, Read and End; between
// them it is paused, so neither body is ever held in memory. All of the request is to be written
// before anything is read. One thread at a time.
class HttpStream final : public ByteStream, private curl::Handler {
 public:
  // Uses `connection` until it is destroyed; after anything but a kDone of End the connection is of
  // no further use.
  HttpStream(KeptConnection& connection, const HttpSettings& settings, const HttpRequest& request);
  HttpStream(const HttpStream&) = delete;
  HttpStream& operator=(const HttpStream&) = delete;

  [[nodiscard]] bool Read(WritableBytes bytes) override;
  [[nodiscard]] bool Write(std::initializer_list<Bytes> pieces) override;
  [[nodiscard]] FrameStatus End() override;

  // Whether a byte of the request may have reached the server.
  [[nodiscard]] bool HasBegun() const { return transfer_.HasBegun(); }
  // After a Read or Write that failed: kMalformed when the server's answer is none that a frame
  // could come in, or is over before its frame is; else kConnectionLost.
  [[nodiscard]] FrameStatus Failure() const;
  // What the server handed out with an answer of status 200; empty when it did not. Valid until
  // destruction.
  [[nodiscard]] std::string_view LoginToken() const;

 private:
  void SetUp(const HttpRequest& request);

  curl::Next Send(std::span<char> room, std::size_t& count) override;
  bool TakeLine(std::span<const char> line) override;
  curl::Next TakeBody(std::span<const char> bytes) override;
  // Whether the headers of the final answer announce a body that frames come in.
  bool IsFrameAhead();

  KeptConnection& connection_;
  curl::Transfer transfer_;

  // What is still to be taken by libcurl.
  std::vector<Bytes> pieces_;
  std::size_t next_piece_ = 0;
  // Where the bytes that Read waits for go.
  WritableBytes target_;
  // What came with them and is for the next Read. Because receiving pauses while there is any, one
  // helping is all that it ever holds.
  std::array<unsigned char, CURL_MAX_WRITE_SIZE> surplus_;
  WritableBytes unread_;

  bool has_all_headers_ = false;
  bool has_status_200_ = false;
};

}  // namespace qv::wire
