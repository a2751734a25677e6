// What stands above the body of an HTTP message.
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

}  // namespace qv::standin
