#include "HttpExchange.h"

#include <curl/curl.h>
#include <memory>
#include <utility>

#include "base/text/HostName.h"
#include "transports/exchange/ReceiveReply.h"

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

// The address to which frames for a server are posted. `server` is a host name or an address,
// "http://" or "https://" may stand before it; it is https as well when `use_tls` says so. The same
// server has the same text however it is spelt in upper and lower case, so this also tells servers
// apart. Nothing when `server` is more than that (a path, a port, a user), or `port` is none.
std::optional<std::string> CallUrl(std::string_view server, std::uint32_t port, bool use_tls) {
  if (port == 0 || port > 0xFFFF) return std::nullopt;
  const bool is_https = text::TakeScheme(server, kHttps);
  if (!is_https) text::TakeScheme(server, kHttp);
  const std::optional<std::string> host = text::HostForUrl(server);
  return host ? Build(is_https || use_tls, *host, port) : std::nullopt;
}

}  // namespace

int HttpExchange::Run(const char* server, std::uint32_t port, bool compress) {
  const auto url = CallUrl(server != nullptr ? server : "", port, settings_.use_tls);
  std::optional<RequestFrame> frame = RequestFrame::Prepare(request_, reply_, settings_.token);
  // A file can be so long that a frame around it has no length that could be announced.
  if (!url || !frame || frame->Length() > kMaxFile) return kNotDelivered;
  const std::uint64_t generation = transport_.pool.Generation();
  connection_ = transport_.pool.Take(*url);
  if (!connection_) connection_ = std::make_unique<KeptConnection>(*url);
  const HttpRequest request{
      .length = frame->Length(), .login_token = transport_.tokens.Of(*url), .compress = compress};
  stream_.emplace(*connection_, settings_, request);
  const int result = Talk(*frame);
  const std::string_view token = stream_->LoginToken();
  if (LoginTokens::IsToken(token)) transport_.tokens.Keep(*url, token);
  stream_.reset();
  if (result == kDelivered) transport_.pool.Give(std::move(connection_), generation);
  return result;
}

int HttpExchange::Interrupted() const {
  return stream_ && stream_->HasBegun() ? kOutcomeUnknown : kNotDelivered;
}

int HttpExchange::Talk(RequestFrame& frame) {
  FrameStatus status = frame.Send(*stream_);
  if (!stream_->HasBegun()) return kNotDelivered;
  // A request that did not get out leaves the outcome open, its own file's failure included, unless
  // the server has refused it meanwhile.
  if (status != FrameStatus::kDone) return ResultOf(stream_->Failure());
  status = ReceiveReply(*stream_, reply_);
  return ResultOf(status == FrameStatus::kConnectionLost ? stream_->Failure() : status);
}

}  // namespace qv::wire
