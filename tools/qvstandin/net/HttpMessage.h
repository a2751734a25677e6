// HTTP messages: what stands above the body, and the body of a request.
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
};

enum class HttpMethod { kGet, kHead, kPost, kOther };
enum class HttpExpectation { kNothing, kContinue, kOther };

// A request's, as far as it matters here.
struct HttpRequestHead {
  HttpMethod method = HttpMethod::kOther;
  std::string target;
  bool is_for_bytes = false;  // the body is declared to be kBytesType
  bool is_chunked = false;
  std::optional<std::uint64_t> length;  // of the body
  HttpExpectation expectation = HttpExpectation::kNothing;
  bool keep_alive = false;
  bool takes_packed = false;
  std::string login_token;

  [[nodiscard]] bool HasBody() const { return is_chunked || length.value_or(0) != 0; }
};

// Reads one within the time for one read; what stands behind it is left in the stream. kOk when
// `head` is filled; another status when what came deserves no other answer, nothing when nobody is
// there to hear one.
[[nodiscard]] std::optional<HttpStatus> ReadHead(ClientStream& stream, HttpRequestHead& head);

struct HttpReplyHead {
  HttpStatus status = HttpStatus::kOk;
  std::string_view type = kBytesType;
  std::uint64_t length = 0;
  bool keep_alive = false;
  std::string_view allow = {};        // for kNotAllowed
  std::string_view login_token = {};  // empty: none is handed out
};

[[nodiscard]] std::string HeadText(const HttpReplyHead& head);
// What a status is called.
[[nodiscard]] std::string ReasonFor(HttpStatus status);

// The body of a request, as the frame that it holds.
//
// Reads what is left when HTTP's own marks are taken away; writes as the connection does.
class HttpBody : public wire::ByteStream {
 public:
  // The stream stands behind the head, and outlives the body.
  HttpBody(ClientStream& stream, const HttpRequestHead& head)
      : stream_(stream), is_chunked_(head.is_chunked), left_(head.length.value_or(0)) {}

  // False also when the body ends before that.
  bool Read(wire::WritableBytes bytes) override;
  bool Write(std::initializer_list<wire::Bytes> pieces) override { return stream_.Write(pieces); }
  // Whether nothing follows any more; may have to wait for the mark that says so.
  [[nodiscard]] bool IsAtEnd();
  // Whether the connection can be used no more.
  [[nodiscard]] bool IsLost() const { return is_lost_; }

 private:
  [[nodiscard]] bool NextChunk(ClientStream::Deadline deadline);
  // A line without its end. Nothing when it is too long or has a wrong end.
  [[nodiscard]] std::optional<std::string> Line(ClientStream::Deadline deadline);

  ClientStream& stream_;
  const bool is_chunked_;
  std::uint64_t left_;  // of the body, or of this chunk
  bool is_first_ = true;
  bool is_last_ = false;  // the end was seen
  bool is_lost_ = false;
};

}  // namespace qv::standin
