#include "CallUrl.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>

namespace qv::wire {

namespace {

constexpr const char* kPath = "/qvcall";
constexpr std::string_view kHttp = "http://";
constexpr std::string_view kHttps = "https://";
constexpr std::size_t kLongestName = 255;

using UrlHandle = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string ToLower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return ToLower(c); });
  return lower;
}

// Cuts `scheme` off. False when it does not stand there.
bool TakeScheme(std::string& name, std::string_view scheme) {
  if (!name.starts_with(scheme)) return false;
  name.erase(0, scheme.size());
  return true;
}

// What only names a host: none of it can be taken for another part of an address.
bool IsHost(std::string_view name) {
  const auto is_part_of_one = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_';
  };
  return std::all_of(name.begin(), name.end(), is_part_of_one);
}

// The host as an address has it: one of IPv6 in brackets, which it may already have. Whether it is
// one is left to the library that builds the address.
std::string Bracketed(const std::string& name) {
  const bool is_ipv6 = name.find(':') != std::string::npos && !name.starts_with('[');
  return is_ipv6 ? "[" + name + "]" : name;
}

bool IsIpv6(std::string_view name) {
  return name.size() > 2 && name.front() == '[' && name.back() == ']' &&
         name.find_first_not_of("0123456789abcdef:.", 1) == name.size() - 1;
}

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
  std::string name = ToLower(server.substr(0, kHttps.size() + kLongestName + 1));
  const bool is_https = TakeScheme(name, kHttps);
  if (!is_https) TakeScheme(name, kHttp);
  if (name.empty() || name.size() > kLongestName) return std::nullopt;
  const std::string host = Bracketed(name);
  if (!IsHost(host) && !IsIpv6(host)) return std::nullopt;
  return Build(is_https || use_tls, host, port);
}

}  // namespace qv::wire
