#include "FtpServer.h"

#include <curl/curl.h>

#include <algorithm>

#include "components/queue/RemotePath.h"

namespace qv::components {

namespace {

constexpr std::string_view kPlain = "ftp://";
constexpr std::string_view kSecure = "ftpes://";
constexpr std::uint16_t kUsualPort = 21;
constexpr std::size_t kLongestName = 255;

bool TakePrefix(std::string_view& host, std::string_view prefix) {
  if (host.size() < prefix.size()) return false;
  if (!curl_strnequal(host.data(), prefix.data(), prefix.size())) return false;
  host.remove_prefix(prefix.size());
  return true;
}

bool IsMadeOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

// The host as an address has it; nothing when a part of it could be taken for something else.
std::optional<std::string> HostOfUrl(std::string_view host) {
  if (host.size() > kLongestName) return std::nullopt;
  const bool is_bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
  if (is_bracketed) host = host.substr(1, host.size() - 2);
  if (host.find(':') != std::string_view::npos) {
    if (!IsMadeOf(host, "0123456789abcdefABCDEF:.")) return std::nullopt;
    return '[' + std::string(host) + ']';
  }
  constexpr std::string_view kName =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._";
  if (is_bracketed || !IsMadeOf(host, kName)) return std::nullopt;
  return std::string(host);
}

}  // namespace

std::optional<FtpServer> MakeFtpServer(std::string_view host, std::uint16_t port,
                                       std::string_view user, std::string_view password) {
  const bool has_tls = TakePrefix(host, kSecure);
  if (!has_tls) TakePrefix(host, kPlain);
  const auto name = HostOfUrl(host);
  if (!name || HasControls(user) || HasControls(password)) return std::nullopt;
  return FtpServer{
      .url = std::string(kPlain) + *name + ':' + std::to_string(port != 0 ? port : kUsualPort),
      .has_tls = has_tls,
      .user = std::string(user),
      .password = std::string(password)};
}

}  // namespace qv::components
