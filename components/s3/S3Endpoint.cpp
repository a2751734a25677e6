#include "S3Endpoint.h"

#include <algorithm>

#include "S3Signature.h"

namespace qv::components {

namespace {

constexpr std::size_t kLongestHost = 255;
constexpr std::string_view kHttp = "http://";
constexpr std::string_view kHttps = "https://";
constexpr int kHttpPort = 80;
constexpr int kHttpsPort = 443;

constexpr long kBucketInPath = 0;
constexpr long kBucketInHost = 1;

bool IsLowerOrDigit(char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); }

std::string ToLower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

// What only names a host: none of it can be taken for another part of an address.
bool IsHostName(std::string_view name) {
  return !name.empty() && name.size() <= kLongestHost && IsLowerOrDigit(name.front()) &&
         std::all_of(name.begin(), name.end(),
                     [](char c) { return IsLowerOrDigit(c) || c == '-' || c == '.' || c == '_'; });
}

bool IsIpv6(std::string_view name) {
  return name.size() > 2 && name.size() <= kLongestHost && name.front() == '[' &&
         name.find_first_not_of("0123456789abcdef:.", 1) == name.size() - 1 && name.back() == ']';
}

bool IsAddress(std::string_view host) {
  return IsIpv6(host) || host.find_first_not_of("0123456789.") == std::string_view::npos;
}

// Old buckets may have names that new ones cannot have any more.
bool IsBucketInPath(std::string_view bucket) {
  const auto is_allowed = [](char c) {
    return IsLowerOrDigit(c) || (c >= 'A' && c <= 'Z') || c == '-' || c == '.' || c == '_';
  };
  return bucket.size() <= 255 && std::all_of(bucket.begin(), bucket.end(), is_allowed) &&
         bucket != "." && bucket != "..";
}

bool IsBucketInHost(std::string_view bucket) {
  const auto is_allowed = [](char c) { return IsLowerOrDigit(c) || c == '-' || c == '.'; };
  return bucket.size() <= 63 && std::all_of(bucket.begin(), bucket.end(), is_allowed) &&
         IsLowerOrDigit(bucket.front()) && IsLowerOrDigit(bucket.back()) &&
         bucket.find("..") == std::string_view::npos;
}

}  // namespace

std::optional<S3Endpoint> S3Endpoint::Parse(std::string_view host, std::uint16_t port, long style) {
  if (style != kBucketInPath && style != kBucketInHost) return std::nullopt;
  S3Endpoint endpoint;
  std::string name = ToLower(host.substr(0, kHttps.size() + kLongestHost + 1));
  const bool is_http = name.starts_with(kHttp);
  if (is_http) name.erase(0, kHttp.size());
  if (name.starts_with(kHttps)) name.erase(0, kHttps.size());
  if (!IsHostName(name) && !IsIpv6(name)) return std::nullopt;
  endpoint.scheme_ = is_http ? "http" : "https";
  endpoint.host_ = name;
  if (port != 0 && port != (is_http ? kHttpPort : kHttpsPort)) {
    endpoint.port_ = ":" + std::to_string(port);
  }
  endpoint.is_bucket_in_host_ = style == kBucketInHost;
  if (endpoint.is_bucket_in_host_ && IsAddress(name)) return std::nullopt;
  return endpoint;
}

std::optional<S3Wire> S3Endpoint::Address(const S3Request& request) const {
  S3Wire wire{.method = request.method,
              .scheme = scheme_,
              .host = host_ + port_,
              .path = "/",
              .query = CanonicalQuery(request.query),
              .headers = request.headers};
  if (request.bucket.empty()) return wire;
  if (!is_bucket_in_host_) {
    if (!IsBucketInPath(request.bucket)) return std::nullopt;
    wire.path += request.bucket;
    if (!request.key.empty()) wire.path += "/";
  } else {
    if (!IsBucketInHost(request.bucket)) return std::nullopt;
    wire.host = request.bucket + "." + wire.host;
  }
  wire.path += UriEncode(request.key, true);
  return wire;
}

}  // namespace qv::components
