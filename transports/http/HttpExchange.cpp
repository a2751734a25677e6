#include "HttpExchange.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "base/text/HostName.h"
#include "transports/exchange/CallError.h"
#include "transports/exchange/ReceiveReply.h"
#include "transports/exchange/Waiting.h"

namespace qv::wire {

namespace {

constexpr const char* kPath = "/qvcall";
constexpr std::string_view kHttp = "http://";
constexpr std::string_view kHttps = "https://";

using UrlHandle = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

std::optional<std::string> Build(bool is_https, const std::string& host, std::uint32_t port) {
  const UrlHandle url(curl_url(), curl_url_cleanup);
  if (!url) return std::nullopt;
  const auto set = [&](CURLUPart part, const char* text) {
    return curl_url_set(url.get(), part, text, 0) == CURLUE_OK;
  };
  if (!set(CURLUPART_SCHEME, is_https ? "https" : "http") || !set(CURLUPART_HOST, host.c_str()) ||
      !set(CURLUPART_PORT, std::to_string(port).c_str()) || !set(CURLUPART_PATH, kPath)) {
    return std::nullopt;
  }
  char* text = nullptr;
  if (curl_url_get(url.get(), CURLUPART_URL, &text, 0) != CURLUE_OK) return std::nullopt;
  const std::unique_ptr<char, decltype(&curl_free)> owner(text, curl_free);
  return std::string(text);
}

// Returns the address to which frames for a server are posted. `server` is a host name or an IP
// address, optionally after "http://" or "https://"; `use_tls` selects https too. Upper and lower
// case make no difference, so the address also identifies the server. Returns nothing if `server`
// contains anything else (a path, a port, a user) or `port` is out of range.
std::optional<std::string> CallUrl(std::string_view server, std::uint32_t port, bool use_tls) {
  if (port == 0 || port > 0xFFFF) return std::nullopt;
  const bool is_https = text::TakeScheme(server, kHttps);
  if (!is_https) text::TakeScheme(server, kHttp);
  const std::optional<std::string> host = text::HostForUrl(server);
  return host ? Build(is_https || use_tls, *host, port) : std::nullopt;
}

}  // namespace

int HttpExchange::Run(const char* server, std::uint32_t port, bool compress) {
  const std::string name = server != nullptr ? server : "";
  peer_ = NameOf(name, port);
  const auto url = CallUrl(name, port, settings_.use_tls);
  if (!url) {
    error_ =
        CannotConnect(peer_, settings_.connect_timeout, "this is not a server's name and port");
    return kNotDelivered;
  }
  const Clock::time_point deadline = Clock::now() + settings_.connect_timeout;
  const int result = TryOnce(*url, compress, deadline);
  if (!is_busy_) return result;
  if (PauseWhileBusy(deadline, cancel_)) return TryOnce(*url, compress, deadline);
  if (cancel_.Ask()) error_ = Cancelled();
  return result;
}

int HttpExchange::TryOnce(const std::string& url, bool compress, Clock::time_point deadline) {
  is_busy_ = false;
  std::optional<RequestFrame> frame =
      RequestFrame::Prepare(request_, reply_, settings_.token, error_);
  if (!frame) return kNotDelivered;
  // A file can be so large that the length of its frame does not fit into a Content-Length.
  if (frame->Length() > kMaxFile) {
    error_ = {error::kLocal, "the file is too large for HTTP"};
    return kNotDelivered;
  }
  const std::uint64_t generation = transport_.pool.Generation();
  connection_ = transport_.pool.Take(url);
  if (!connection_) connection_ = std::make_unique<KeptConnection>(url);
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
  const HttpRequest request{.length = frame->Length(),
                            .login_token = transport_.tokens.Of(url),
                            .compress = compress,
                            .connect_within = std::max(left, std::chrono::milliseconds(1)),
                            .cancel = cancel_};
  stream_.emplace(*connection_, settings_, request);
  const int result = Talk(*frame);
  const std::string_view token = stream_->LoginToken();
  if (LoginTokens::IsToken(token)) transport_.tokens.Keep(url, token);
  stream_.reset();
  if (MayKeepConnection(result, error_)) {
    transport_.pool.Give(std::move(connection_), generation);
  }
  return result;
}

int HttpExchange::Interrupted() const {
  return stream_ && stream_->HasBegun() ? kOutcomeUnknown : kNotDelivered;
}

int HttpExchange::Talk(RequestFrame& frame) {
  FrameStatus status = frame.Send(*stream_, FileListener(listener_));
  if (!stream_->HasBegun()) return Fail(kNotDelivered);
  if (status == FrameStatus::kFileFailed && !stream_->HasEnded()) {
    error_ = {error::kLocal, std::string("cannot read all of the file ") + request_.FileName()};
    return kOutcomeUnknown;
  }
  // If the request was not sent completely, the outcome is unknown, unless the server has refused
  // it in the meantime.
  if (status != FrameStatus::kDone) return Fail(ResultOf(stream_->Failure()));
  ReportMessage(listener_, frame.PayloadLength());
  status = ReceiveReply(*stream_, {kAnswersToRequest}, reply_, listener_, error_);
  if (status != FrameStatus::kConnectionLost) return ResultOf(status);
  return Fail(ResultOf(stream_->Failure()));
}

int HttpExchange::Fail(int result) {
  if (stream_->IsCancelled()) {
    error_ = Cancelled();
    return stream_->HasBegun() ? kOutcomeUnknown : kNotDelivered;
  }
  is_busy_ = stream_->IsBusy();
  if (is_busy_) {
    error_ = Busy({error::kBusy, ReasonText(stream_->BusyReason())});
    return kNotDelivered;
  }
  error_ = stream_->Error(peer_);
  return result;
}

}  // namespace qv::wire
