#include "Digest.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <new>

namespace qv::components {

namespace {

using DigestBytes = std::array<unsigned char, EVP_MAX_MD_SIZE>;

const unsigned char* Unsigned(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

std::string TextOf(const DigestBytes& bytes, unsigned length) {
  return {reinterpret_cast<const char*>(bytes.data()), length};
}

}  // namespace

std::string HmacSha256(std::string_view key, std::string_view text) {
  DigestBytes bytes;
  unsigned length = 0;
  if (HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()), Unsigned(text), text.size(),
           bytes.data(), &length) == nullptr) {
    throw std::bad_alloc();
  }
  return TextOf(bytes, length);
}

std::string Sha256(std::string_view text) {
  Sha256Stream stream;
  stream.Add(text);
  return stream.Finish();
}

std::string Md5(std::string_view text) {
  DigestBytes bytes;
  unsigned length = 0;
  const bool is_allowed =
      EVP_Digest(text.data(), text.size(), bytes.data(), &length, EVP_md5(), nullptr) == 1;
  return is_allowed ? TextOf(bytes, length) : std::string();
}

Sha256Stream::Sha256Stream() : context_(EVP_MD_CTX_new()) {
  if (!context_ || EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr) != 1) {
    throw std::bad_alloc();
  }
}

void Sha256Stream::Add(std::string_view piece) {
  if (EVP_DigestUpdate(context_.get(), piece.data(), piece.size()) != 1) throw std::bad_alloc();
}

std::string Sha256Stream::Finish() {
  DigestBytes bytes;
  unsigned length = 0;
  if (EVP_DigestFinal_ex(context_.get(), bytes.data(), &length) != 1) throw std::bad_alloc();
  return TextOf(bytes, length);
}

void Sha256Stream::Free::operator()(evp_md_ctx_st* context) const { EVP_MD_CTX_free(context); }

std::string Base64Of(std::string_view bytes) {
  // Four characters for three bytes, plus the NUL that the encoder appends.
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), Unsigned(bytes),
                                     static_cast<int>(bytes.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

}  // namespace qv::components
