// Digests and Base64.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace qv::components {

// Digests are raw bytes. All functions throw std::bad_alloc, and nothing else, if OpenSSL runs out
// of memory.

[[nodiscard]] std::string HmacSha256(std::string_view key, std::string_view text);
[[nodiscard]] std::string Sha256(std::string_view text);
// Returns an empty text if the system does not allow MD5.
[[nodiscard]] std::string Md5(std::string_view text);

// The digest of a text that is passed in pieces.
class Sha256Stream {
 public:
  Sha256Stream();
  void Add(std::string_view piece);
  // Call it once, at the end.
  [[nodiscard]] std::string Finish();

 private:
  struct Free {
    void operator()(evp_md_ctx_st* context) const;
  };
  std::unique_ptr<evp_md_ctx_st, Free> context_;
};

[[nodiscard]] std::string Base64Of(std::string_view bytes);

}  // namespace qv::components
