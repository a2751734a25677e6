#include "S3Endpoint.h"

#include <algorithm>

#include "S3Signature.h"
#include "base/text/HostName.h"
#include "base/text/Letters.h"
#include "base/text/Percent.h"
#include "base/text/Utf8.h"

namespace qv::components {

namespace {

constexpr std::size_t kLongestKey = 1024;

std::optional<S3Path> Split(std::string_view path) {
  const std::string text(path.substr(std::min(path.size(), path.find_first_not_of('/'))));
  const std::size_t slash = text.find('/');
  if (slash == 0 || slash == std::string::npos || slash + 1 == text.size()) return std::nullopt;
  S3Path split{text.substr(0, slash), text.substr(slash + 1)};
  if (!text::IsUtf8(split.key)) return std::nullopt;
  return split;
}

constexpr std::string_view kHttp = "http://";
constexpr std::string_view kHttps = "https://";
constexpr int kHttpPort = 80;
constexpr int kHttpsPort = 443;

constexpr long kBucketInPath = 0;
constexpr long kBucketInHost = 1;

bool IsLowerOrDigit(char c) { return text::IsLowerLetter(c) || text::IsDigit(c); }

// Old buckets may have names that are no longer allowed for new ones.
bool IsBucketInPath(std::string_view bucket) {
  const auto is_allowed = [](char c) {
    return text::IsLetterOrDigit(c) || c == '-' || c == '.' || c == '_';
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

std::optional<S3Path> S3Path::OfObject(std::string_view path) {
  std::optional<S3Path> object = Split(path);
  if (!object || object->key.size() > kLongestKey || object->key.ends_with('/')) {
    return std::nullopt;
  }
  return object;
}

std::optional<S3Path> S3Path::OfFolder(std::string_view path) {
  std::optional<S3Path> folder = Split(path);
  if (!folder) return std::nullopt;
  if (folder->key.find_first_not_of('/') == std::string::npos) return std::nullopt;
  if (!folder->key.ends_with('/')) folder->key += '/';
  if (folder->key.size() > kLongestKey) return std::nullopt;
  return folder;
}

std::optional<S3Endpoint> S3Endpoint::Parse(std::string_view host, std::uint16_t port, long style) {
  if (style != kBucketInPath && style != kBucketInHost) return std::nullopt;
  S3Endpoint endpoint;
  const bool is_http = text::TakeScheme(host, kHttp);
  if (!is_http) text::TakeScheme(host, kHttps);
  const std::optional<std::string> name = text::HostForUrl(host);
  if (!name) return std::nullopt;
  endpoint.scheme_ = is_http ? "http" : "https";
  endpoint.host_ = *name;
  if (port != 0 && port != (is_http ? kHttpPort : kHttpsPort)) {
    endpoint.port_ = ":" + std::to_string(port);
  }
  endpoint.is_bucket_in_host_ = style == kBucketInHost;
  if (endpoint.is_bucket_in_host_ && text::IsAddress(*name)) return std::nullopt;
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
  wire.path += text::PercentEncoded(request.key, "/");
  return wire;
}

}  // namespace qv::components
