#include "CallUrl.h"

#include <curl/curl.h>

#include <memory>

#include "base/text/HostName.h"

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

}  // namespace

std::optional<std::string> CallUrl(std::string_view server, std::uint32_t port, bool use_tls) {
  if (port == 0 || port > 0xFFFF) return std::nullopt;
  const bool is_https = text::TakeScheme(server, kHttps);
  if (!is_https) text::TakeScheme(server, kHttp);
  const std::optional<std::string> host = text::HostForUrl(server);
  return host ? Build(is_https || use_tls, *host, port) : std::nullopt;
}

}  // namespace qv::wire
