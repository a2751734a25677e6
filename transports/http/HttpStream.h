// One HTTP exchange as a stream: what is written is the request's body, what is read the reply's.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "HttpParameters.h"
#include "KeptConnection.h"
#include "base/curl/Transfer.h"
#include "transports/frame/ByteStream.h"

namespace qv::wire {

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
