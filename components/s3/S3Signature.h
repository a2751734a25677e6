// Signatures of version 4 (AWS4-HMAC-SHA256).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "S3Endpoint.h"

namespace qv::components {

struct S3Keys {
  std::string access;
  std::string secret;
  std::string region;
};

// Pairs as "name=value&...", encoded and in the order in which they are signed.
[[nodiscard]] std::string CanonicalQuery(const TextPairs& query);

// Adds the headers that say when and by whom the request is made; all that the request has are
// signed. `body_hash` is the SHA-256 of the body in lower-case hexadecimal, `now` seconds since
// 1970.
void Sign(S3Wire& wire, const S3Keys& keys, const std::string& body_hash, std::int64_t now);

}  // namespace qv::components
