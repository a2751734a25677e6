// Request signatures, version 4 (AWS4-HMAC-SHA256).
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

// Returns the pairs as "name=value&...", encoded and in the order in which they are signed.
[[nodiscard]] std::string CanonicalQuery(const TextPairs& query);

// Signs all headers of the request, and adds the headers for time, key and signature. `body_hash`
// is the SHA-256 of the body in lower-case hexadecimal; `now` is in seconds since 1970.
void Sign(S3Wire& wire, const S3Keys& keys, const std::string& body_hash, std::int64_t now);

}  // namespace qv::components
