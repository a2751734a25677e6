#include "base/text/HostName.h"

#include <algorithm>
#include <cstddef>

#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv::text {

namespace {

constexpr std::size_t kLongestHost = 255;

bool IsName(std::string_view name) {
  return !name.empty() && IsLetterOrDigit(name.front()) &&
         std::all_of(name.begin(), name.end(),
                     [](char c) { return IsLetterOrDigit(c) || c == '-' || c == '.' || c == '_'; });
}

// One colon could stand before a port.
bool IsIpv6(std::string_view name) {
  return std::count(name.begin(), name.end(), ':') > 1 &&
         std::all_of(name.begin(), name.end(),
                     [](char c) { return HexDigitValue(c) >= 0 || c == ':' || c == '.'; });
}

}  // namespace

bool TakeScheme(std::string_view& server, std::string_view scheme) {
  if (!StartsWithIgnoringCase(server, scheme)) return false;
  server.remove_prefix(scheme.size());
  return true;
}

std::optional<std::string> HostForUrl(std::string_view name) {
  if (name.size() > kLongestHost) return std::nullopt;
  if (IsName(name)) return ToLower(name);
  const bool has_brackets = name.size() > 2 && name.front() == '[' && name.back() == ']';
  if (has_brackets) name = name.substr(1, name.size() - 2);
  if (!IsIpv6(name)) return std::nullopt;
  return '[' + ToLower(name) + ']';
}

bool IsAddress(std::string_view host) {
  return host.starts_with('[') || host.find_first_not_of("0123456789.") == std::string_view::npos;
}

HostAndPort SplitPort(std::string_view server) {
  const std::size_t scheme = server.find("://");
  const std::size_t begin = scheme == std::string_view::npos ? 0 : scheme + 3;
  const std::size_t bracket = server.find(']', begin);
  const std::size_t colon = server.find(':', bracket == std::string_view::npos ? begin : bracket);
  const bool is_alone = colon != std::string_view::npos && colon == server.rfind(':');
  if (!is_alone) return {server, std::nullopt};
  return {server.substr(0, colon), server.substr(colon + 1)};
}

}  // namespace qv::text
