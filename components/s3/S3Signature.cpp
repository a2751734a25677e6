#include "S3Signature.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>

#include "Digest.h"
#include "base/text/Numbers.h"
#include "base/text/Percent.h"

namespace qv::components {

namespace {

constexpr const char* kAlgorithm = "AWS4-HMAC-SHA256";
constexpr const char* kScopeEnd = "aws4_request";
constexpr const char* kService = "s3";

// Returns the time as in "20240131T235959Z"; the first eight characters are the day.
std::string TimeText(std::int64_t now) {
  using std::chrono::sys_seconds;
  return fmt::format("{:%Y%m%dT%H%M%SZ}", sys_seconds(std::chrono::seconds(now)));
}

struct SignedHeaders {
  std::string lines;
  std::string names;
};

SignedHeaders HeadersOf(const S3Wire& wire) {
  TextPairs headers = wire.headers;
  headers.emplace_back("host", wire.host);
  std::sort(headers.begin(), headers.end());
  SignedHeaders to_sign;
  for (const auto& [name, value] : headers) {
    to_sign.lines += name + ":" + value + "\n";
    if (!to_sign.names.empty()) to_sign.names += ";";
    to_sign.names += name;
  }
  return to_sign;
}

std::string SigningKey(const S3Keys& keys, std::string_view day) {
  std::string key = HmacSha256("AWS4" + keys.secret, day);
  key = HmacSha256(key, keys.region);
  key = HmacSha256(key, kService);
  return HmacSha256(key, kScopeEnd);
}

}  // namespace

std::string CanonicalQuery(const TextPairs& query) {
  TextPairs pairs;
  for (const auto& [name, value] : query) {
    pairs.emplace_back(text::PercentEncoded(name), text::PercentEncoded(value));
  }
  // Sorts the encoded pairs, whose order differs from that of the plain ones.
  std::sort(pairs.begin(), pairs.end());
  std::string text;
  for (const auto& [name, value] : pairs) {
    if (!text.empty()) text += "&";
    text += name + "=" + value;
  }
  return text;
}

void Sign(S3Wire& wire, const S3Keys& keys, const std::string& body_hash, std::int64_t now) {
  const std::string time = TimeText(now);
  const std::string day = time.substr(0, 8);
  wire.headers.emplace_back("x-amz-content-sha256", body_hash);
  wire.headers.emplace_back("x-amz-date", time);
  const SignedHeaders headers = HeadersOf(wire);
  const std::string canonical = fmt::format("{}\n{}\n{}\n{}\n{}\n{}", wire.method, wire.path,
                                            wire.query, headers.lines, headers.names, body_hash);
  const std::string scope = fmt::format("{}/{}/{}/{}", day, keys.region, kService, kScopeEnd);
  const std::string to_sign =
      fmt::format("{}\n{}\n{}\n{}", kAlgorithm, time, scope, text::HexOf(Sha256(canonical)));
  const std::string signature = text::HexOf(HmacSha256(SigningKey(keys, day), to_sign));
  wire.headers.emplace_back("authorization",
                            fmt::format("{} Credential={}/{}, SignedHeaders={}, Signature={}",
                                        kAlgorithm, keys.access, scope, headers.names, signature));
}

}  // namespace qv::components
