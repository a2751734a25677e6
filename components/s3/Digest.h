// Checksums and their texts.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace qv::components {

// Digests are raw bytes. All of this throws std::bad_alloc when the library behind it has no memory
// left, and nothing else.

[[nodiscard]] std::string HmacSha256(std::string_view key, std::string_view text);
[[nodiscard]] std::string Sha256(std::string_view text);
// Empty on a system that allows no MD5.
[[nodiscard]] std::string Md5(std::string_view text);

// Of text that comes in pieces.
class Sha256Stream {
 public:
  Sha256Stream();
  void Add(std::string_view piece);
  // Once, at the end.
  [[nodiscard]] std::string Finish();

 private:
  struct Free {
    void operator()(evp_md_ctx_st* context) const;
  };
  std::unique_ptr<evp_md_ctx_st, Free> context_;
};

[[nodiscard]] std::string Base64Of(std::string_view bytes);

}  // namespace qv::components
