#include "HttpSession.h"

#include <string>

#include "FrameExchange.h"

namespace qv::standin {

namespace {

constexpr std::string_view kPage = "/";
constexpr std::string_view kCall = "/qvcall";
constexpr wire::FrameKind kOnlyRequests[] = {wire::FrameKind::kRequest};

wire::Bytes BytesIn(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

std::string_view TextIn(wire::Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// The server does not skip an unread body to find the next request.
bool MayGoOn(const HttpRequestHead& request) { return request.keep_alive && !request.HasBody(); }

HttpStatus JudgeCall(const HttpRequestHead& request) {
  if (request.method != HttpMethod::kPost) return HttpStatus::kNotAllowed;
  // A browser sends the simple content types for any web page without a preflight request.
  if (!request.is_for_bytes) return HttpStatus::kWrongType;
  if (request.expectation == HttpExpectation::kOther) return HttpStatus::kCannotExpect;
  if (!request.is_chunked && !request.length) return HttpStatus::kLengthRequired;
  return HttpStatus::kOk;
}

error::Class ClassOf(HttpStatus status) {
  switch (status) {
    case HttpStatus::kTooLarge:
    case HttpStatus::kHeadTooLarge:
      return error::kTooLarge;
    case HttpStatus::kFailed:
      return error::kInternal;
    default:
      return error::kSyntax;
  }
}

}  // namespace

void HttpSession::Serve() {
  while (AwaitRequest(stream_, services_, rules_) && ServeRequest()) {
  }
  stream_.SayGoodbye();
}

bool HttpSession::ServeRequest() {
  HttpRequestHead request;
  const auto status = ReadHead(stream_, request);
  if (!status) return false;
  stream_.LimitReads(ClientStream::Deadline::max());
  if (*status != HttpStatus::kOk) return RefuseMalformed(*status);
  if (request.target == kCall) return ServeCall(request);
  if (request.target == kPage) return ServePage(request);
  return Refuse(HttpStatus::kNotFound, request);
}

bool HttpSession::ServePage(const HttpRequestHead& request) {
  if (request.method != HttpMethod::kGet && request.method != HttpMethod::kHead) {
    return Refuse(HttpStatus::kNotAllowed, request, "GET, HEAD");
  }
  return SendText({.status = HttpStatus::kOk, .keep_alive = MayGoOn(request)},
                  "The stand-in server; calls are sent to /qvcall.\n", request.method);
}

bool HttpSession::ServeCall(const HttpRequestHead& request) {
  const HttpStatus judged = JudgeCall(request);
  if (judged != HttpStatus::kOk) return Refuse(judged, request, "POST");
  if (request.expectation == HttpExpectation::kContinue &&
      !stream_.Write({BytesIn("HTTP/1.1 100 Continue\r\n\r\n")})) {
    return false;
  }
  HttpBody body(stream_, request);
  FrameExchange exchange(stream_, services_, rules_);
  if (request.takes_version_2) exchange.TakeReasons();
  const wire::FrameStatus received = exchange.Receive(body, kOnlyRequests, request.login_token);
  const bool is_whole = received == wire::FrameStatus::kDone && body.IsAtEnd();
  if (body.IsLost()) return false;
  if (received == wire::FrameStatus::kFileFailed) return Refuse(HttpStatus::kFailed, request);
  if (received != wire::FrameStatus::kDone) {
    const bool is_large = received == wire::FrameStatus::kDoesNotFit;
    return RefuseMalformed(is_large ? HttpStatus::kTooLarge : HttpStatus::kBadRequest,
                           FailureOf(received).text);
  }
  if (!is_whole) return RefuseMalformed(HttpStatus::kBadRequest, "the body is more than a frame");
  return Answer(request, exchange);
}

// Progress precedes the reply in a body whose length is not known then.
bool HttpSession::Answer(const HttpRequestHead& request, FrameExchange& exchange) {
  HttpReplyHead reply{.is_chunked = true};
  if (exchange.IsAllowed()) {
    reply.keep_alive = request.keep_alive;
    reply.login_token = rules_.login_token;
  }
  ProgressClock clock;
  bool has_begun = false;
  const auto is_abandoned = [&] {
    const bool reports = request.takes_version_2 && request.takes_chunks;
    const auto at_work = reports ? clock.IsDue() : std::nullopt;
    if (at_work) {
      const std::string head = has_begun ? std::string() : HeadText(reply);
      stream_.WriteSoon(BytesIn(head + Chunk(TextIn(ProgressOf(*at_work)))));
      has_begun = true;
    }
    return stream_.IsGone();
  };
  const AnswerForm form{.dialect = Dialect::kSchema, .packed = request.takes_packed};
  const bool has_reply = exchange.Answer(form, is_abandoned);
  if (has_begun) {
    ChunkedReply body(stream_);
    return has_reply && exchange.Send(body) && stream_.Write({BytesIn(kLastChunk)}) &&
           reply.keep_alive;
  }
  if (!has_reply) return Refuse(HttpStatus::kFailed, request);
  reply.is_chunked = false;
  reply.length = exchange.ReplyLength();
  stream_.WriteWithNext(BytesIn(HeadText(reply)));
  return exchange.Send(stream_) && reply.keep_alive;
}

bool HttpSession::Refuse(HttpStatus status, const HttpRequestHead& request,
                         std::string_view allow) {
  const bool is_not_allowed = status == HttpStatus::kNotAllowed;
  return SendText({.status = status,
                   .keep_alive = MayGoOn(request),
                   .allow = is_not_allowed ? allow : std::string_view()},
                  Refusal(status, {}), request.method);
}

bool HttpSession::RefuseMalformed(HttpStatus status, std::string_view why) {
  return SendText({.status = status}, Refusal(status, why), HttpMethod::kOther);
}

std::string HttpSession::Refusal(HttpStatus status, std::string_view why) {
  const std::string text = ReasonFor(status) + (why.empty() ? "" : ": ") + std::string(why);
  rules_.on_served(RecordOfRefusal(
      stream_, "HTTP status " + std::to_string(static_cast<unsigned>(status)) + ": " + text,
      ClassOf(status)));
  return text + "\n";
}

bool HttpSession::SendText(HttpReplyHead reply, std::string_view text, HttpMethod method) {
  reply.type = "text/plain";
  reply.length = text.size();
  const std::string_view body = method == HttpMethod::kHead ? std::string_view() : text;
  return stream_.Write({BytesIn(HeadText(reply)), BytesIn(body)}) && reply.keep_alive;
}

}  // namespace qv::standin
