#include "HttpMessage.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>
#include <sstream>
#include <string_view>

#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv::standin {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

using Parser = http::request_parser<http::empty_body>;
using Error = boost::system::error_code;

constexpr std::uint32_t kLongestHead = 8192;
constexpr const char* kCompressField = "Qv-Compress";
constexpr const char* kLoginTokenField = "Qv-Login-Token";
constexpr const char* kFrameField = "Qv-Frame";
constexpr const char* kBusyField = "Qv-Busy";
constexpr const char* kReasonField = "Qv-Reason";
constexpr std::string_view kFrameVersion2 = "2";
constexpr std::string_view kLineEnd = "\r\n";

wire::Bytes BytesIn(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

// Adapts the client's stream to the parser's interface.
class HeadSource {
 public:
  explicit HeadSource(ClientStream& stream) : stream_(stream), deadline_(stream.DeadlineFor(0)) {}

  template <typename Buffers>
  std::size_t read_some(const Buffers& buffers, Error& error) {
    const asio::mutable_buffer room = *asio::buffer_sequence_begin(buffers);
    const std::size_t length =
        stream_.ReadSome({static_cast<unsigned char*>(room.data()), room.size()}, deadline_);
    error = length != 0 ? Error() : asio::error::connection_aborted;
    return length;
  }
  template <typename Buffers>
  std::size_t read_some(const Buffers& buffers) {
    Error error;
    const std::size_t length = read_some(buffers, error);
    if (error) throw boost::system::system_error(error);
    return length;
  }

 private:
  ClientStream& stream_;
  ClientStream::Deadline deadline_;
};

// Rejects ambiguous framing (request smuggling): two lengths, length plus chunking, unknown
// codings.
bool HasOneMeaning(const Parser& parser) {
  const auto& fields = parser.get();
  const bool is_current = parser.get().version() == 11;
  if (fields.count(http::field::content_length) > 1) return false;
  if (is_current && fields.count(http::field::host) != 1) return false;
  const auto codings = fields.count(http::field::transfer_encoding);
  if (codings == 0) return true;
  return is_current && codings == 1 && fields.count(http::field::content_length) == 0 &&
         beast::iequals(fields[http::field::transfer_encoding], "chunked");
}

// Ignores the parameters of the type.
bool IsForBytes(beast::string_view type) {
  type = type.substr(0, type.find(';'));
  return beast::iequals(type.substr(0, type.find_last_not_of(" \t") + 1), kBytesType);
}

HttpExpectation ExpectationOf(beast::string_view field) {
  if (field.empty()) return HttpExpectation::kNothing;
  return beast::iequals(field, "100-continue") ? HttpExpectation::kContinue
                                               : HttpExpectation::kOther;
}

HttpMethod MethodOf(http::verb verb) {
  switch (verb) {
    case http::verb::get:
      return HttpMethod::kGet;
    case http::verb::head:
      return HttpMethod::kHead;
    case http::verb::post:
      return HttpMethod::kPost;
    default:
      return HttpMethod::kOther;
  }
}

HttpRequestHead HeadOf(const Parser& parser) {
  const auto& request = parser.get();
  HttpRequestHead head;
  head.method = MethodOf(request.method());
  head.target = std::string(request.target());
  head.is_for_bytes = IsForBytes(request[http::field::content_type]);
  head.is_chunked = parser.chunked();
  if (const auto length = parser.content_length()) head.length = *length;
  head.expectation = ExpectationOf(request[http::field::expect]);
  head.keep_alive = parser.keep_alive() && request.version() == 11;
  head.takes_packed = request[kCompressField] == "1";
  head.takes_chunks = request.version() == 11;
  head.takes_version_2 = request[kFrameField] == kFrameVersion2;
  head.login_token = std::string(request[kLoginTokenField]);
  return head;
}

// Long enough for a chunk's length and a few extensions, which are ignored.
constexpr std::size_t kLongestLine = 256;

std::optional<std::uint64_t> ChunkLength(std::string_view line) {
  return text::ParseNumber<std::uint64_t>(line.substr(0, line.find(';')), 16);
}

}  // namespace

std::optional<HttpStatus> ReadHead(ClientStream& stream, HttpRequestHead& head) {
  HeadSource source(stream);
  beast::flat_buffer buffer(kLongestHead);
  Parser parser;
  parser.header_limit(kLongestHead);
  parser.body_limit(boost::none);  // the frame has limits of its own
  Error error;
  http::read_header(source, buffer, parser, error);
  if (error == asio::error::connection_aborted) return std::nullopt;
  if (error == http::error::header_limit || error == http::error::buffer_overflow) {
    return HttpStatus::kHeadTooLarge;
  }
  if (error || !HasOneMeaning(parser)) return HttpStatus::kBadRequest;
  const asio::const_buffer behind = buffer.data();
  stream.PutBack({static_cast<const unsigned char*>(behind.data()), behind.size()});
  head = HeadOf(parser);
  return HttpStatus::kOk;
}

std::string HeadText(const HttpReplyHead& head) {
  http::response_header<> response;
  response.version(11);
  response.result(static_cast<unsigned>(head.status));
  response.set(http::field::content_type, head.type);
  if (head.is_chunked) {
    response.set(http::field::transfer_encoding, "chunked");
  } else {
    response.set(http::field::content_length, std::to_string(head.length));
  }
  if (head.status == HttpStatus::kBusy) response.set(kBusyField, "1");
  if (!head.reason.empty()) response.set(kReasonField, head.reason);
  if (!head.keep_alive) response.set(http::field::connection, "close");
  if (!head.allow.empty()) response.set(http::field::allow, head.allow);
  if (!head.login_token.empty()) response.set(kLoginTokenField, head.login_token);
  std::ostringstream text;
  text << response;
  return std::move(text).str();
}

std::string ReasonFor(HttpStatus status) {
  return std::string(http::obsolete_reason(static_cast<http::status>(status)));
}

bool TakesVersion2(std::string_view head) {
  for (std::size_t end = 0; (end = head.find(kLineEnd)) != std::string_view::npos;
       head.remove_prefix(end + kLineEnd.size())) {
    const std::string_view line = head.substr(0, end);
    const std::size_t colon = std::min(line.find(':'), line.size());
    if (text::EqualIgnoringCase(line.substr(0, colon), kFrameField) &&
        text::Trimmed(line.substr(std::min(colon + 1, line.size()))) == kFrameVersion2) {
      return true;
    }
  }
  return false;
}

std::string Chunk(std::string_view bytes) {
  return fmt::format("{:x}{}{}{}", bytes.size(), kLineEnd, bytes, kLineEnd);
}

bool ChunkedReply::Write(std::initializer_list<wire::Bytes> pieces) {
  for (const wire::Bytes piece : pieces) {
    if (piece.empty()) continue;
    const std::string size = fmt::format("{:x}{}", piece.size(), kLineEnd);
    if (!stream_.Write({BytesIn(size), piece, BytesIn(kLineEnd)})) return false;
  }
  return true;
}

bool HttpBody::Read(wire::WritableBytes bytes) {
  // All chunks share one deadline; otherwise a client could stay forever by sending small ones.
  const auto deadline = stream_.DeadlineFor(bytes.size());
  while (!bytes.empty()) {
    if (left_ == 0 && !NextChunk(deadline)) return false;
    const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(left_, bytes.size()));
    if (!stream_.Read(bytes.first(length), deadline)) {
      is_lost_ = true;
      return false;
    }
    left_ -= length;
    bytes = bytes.subspan(length);
  }
  return true;
}

bool HttpBody::IsAtEnd() {
  return left_ == 0 && !NextChunk(stream_.DeadlineFor(0)) && (is_last_ || !is_chunked_);
}

// Chunks are decoded here because the parser's codec asserts on a last chunk that arrives byte by
// byte.
bool HttpBody::NextChunk(ClientStream::Deadline deadline) {
  if (!is_chunked_ || is_last_) return false;
  if (!is_first_ && Line(deadline) != "") return false;
  is_first_ = false;
  const auto line = Line(deadline);
  const auto length = line ? ChunkLength(*line) : std::nullopt;
  if (!length) return false;
  left_ = *length;
  // Trailer fields are refused.
  if (left_ == 0) is_last_ = Line(deadline) == "";
  return left_ != 0;
}

std::optional<std::string> HttpBody::Line(ClientStream::Deadline deadline) {
  std::string line;
  while (line.size() < kLongestLine) {
    unsigned char byte = 0;
    if (!stream_.Read({&byte, 1}, deadline)) {
      is_lost_ = true;
      return std::nullopt;
    }
    if (byte == '\n') {
      if (!line.ends_with('\r')) return std::nullopt;
      line.pop_back();
      if (line.find('\r') != std::string::npos) return std::nullopt;
      return line;
    }
    line += static_cast<char>(byte);
  }
  return std::nullopt;
}

}  // namespace qv::standin
