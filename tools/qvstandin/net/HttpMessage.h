// HTTP messages: the head of requests and replies, and the body of requests.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ClientStream.h"

namespace qv::standin {

// The media type of frames.
inline constexpr std::string_view kBytesType = "application/octet-stream";

enum class HttpStatus : unsigned {
  kOk = 200,
  kBadRequest = 400,
  kNotFound = 404,
  kNotAllowed = 405,
  kLengthRequired = 411,
  kTooLarge = 413,
  kWrongType = 415,
  kCannotExpect = 417,
  kHeadTooLarge = 431,
  kFailed = 500,
  kBusy = 503,
};

enum class HttpMethod { kGet, kHead, kPost, kOther };
enum class HttpExpectation { kNothing, kContinue, kOther };

// The fields of a request's head that matter here.
struct HttpRequestHead {
  HttpMethod method = HttpMethod::kOther;
  std::string target;
  bool is_for_bytes = false;  // the body is declared to be kBytesType
  bool is_chunked = false;
  std::optional<std::uint64_t> length;  // of the body
  HttpExpectation expectation = HttpExpectation::kNothing;
  bool keep_alive = false;
  bool takes_packed = false;
  bool takes_chunks = false;     // in the reply
  bool takes_version_2 = false;  // frames with reasons, and progress
  std::string login_token;

  [[nodiscard]] bool HasBody() const { return is_chunked || length.value_or(0) != 0; }
};

// Reads a head within the time limit of one read, and leaves the bytes after it in the stream.
// Returns kOk if `head` was filled, another status if the request must be refused with it, or
// nothing if the client is gone.
[[nodiscard]] std::optional<HttpStatus> ReadHead(ClientStream& stream, HttpRequestHead& head);

struct HttpReplyHead {
  HttpStatus status = HttpStatus::kOk;
  std::string_view type = kBytesType;
  std::uint64_t length = 0;
  bool is_chunked = false;  // instead of the length
  bool keep_alive = false;
  std::string_view allow = {};        // the methods, for kNotAllowed
  std::string_view login_token = {};  // empty: the client gets none
  std::string_view reason = {};       // why the server is busy
};

[[nodiscard]] std::string HeadText(const HttpReplyHead& head);
// Returns the reason phrase of a status.
[[nodiscard]] std::string ReasonFor(HttpStatus status);

// Returns whether a head, up to the end of its last line, asks for frames of version 2.
[[nodiscard]] bool TakesVersion2(std::string_view head);

// Returns `bytes` as one chunk of a reply. `bytes` is not empty.
[[nodiscard]] std::string Chunk(std::string_view bytes);
inline constexpr std::string_view kLastChunk = "0\r\n\r\n";

// Writes each piece of a reply as a chunk.
class ChunkedReply : public wire::ByteStream {
 public:
  // The stream outlives this object.
  explicit ChunkedReply(ClientStream& stream) : stream_(stream) {}

  bool Read(wire::WritableBytes bytes) override { return stream_.Read(bytes); }
  bool Write(std::initializer_list<wire::Bytes> pieces) override;

 private:
  ClientStream& stream_;
};

// The body of a request, which holds a frame. Reading removes the chunk framing; writing goes to
// the connection unchanged.
class HttpBody : public wire::ByteStream {
 public:
  // The stream must be positioned after the head. It outlives the body.
  HttpBody(ClientStream& stream, const HttpRequestHead& head)
      : stream_(stream), is_chunked_(head.is_chunked), left_(head.length.value_or(0)) {}

  // Also returns false if the body is shorter than `bytes`.
  bool Read(wire::WritableBytes bytes) override;
  bool Write(std::initializer_list<wire::Bytes> pieces) override { return stream_.Write(pieces); }
  // Returns whether the whole body was read. May wait for the last chunk.
  [[nodiscard]] bool IsAtEnd();
  // Returns whether reading failed, so that the connection cannot be used any more.
  [[nodiscard]] bool IsLost() const { return is_lost_; }

 private:
  [[nodiscard]] bool NextChunk(ClientStream::Deadline deadline);
  // Returns the next line without its end, or nothing if it is too long or does not end in CR LF.
  [[nodiscard]] std::optional<std::string> Line(ClientStream::Deadline deadline);

  ClientStream& stream_;
  const bool is_chunked_;
  std::uint64_t left_;  // bytes left in the body, or in this chunk
  bool is_first_ = true;
  bool is_last_ = false;  // the last chunk was read
  bool is_lost_ = false;
};

}  // namespace qv::standin
