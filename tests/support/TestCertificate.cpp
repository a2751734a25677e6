#include "TlsSide.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>

namespace qv {

namespace {

template <auto kFree>
struct Free {
  template <class Object>
  void operator()(Object* object) const {
    kFree(object);
  }
};

using Key = std::unique_ptr<EVP_PKEY, Free<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Free<X509_free>>;
using Memory = std::unique_ptr<BIO, Free<BIO_free>>;

void Require(bool is_done) {
  if (!is_done) throw std::runtime_error("a certificate could not be made");
}

std::string Contents(const Memory& memory) {
  char* bytes = nullptr;
  const long length = BIO_get_mem_data(memory.get(), &bytes);
  return {bytes, static_cast<std::size_t>(length)};
}

void AddExtension(X509* certificate, int kind, const std::string& value) {
  X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str());
  Require(extension != nullptr && X509_add_ext(certificate, extension, -1) == 1);
  X509_EXTENSION_free(extension);
}

}  // namespace

TestCertificate MakeCertificate(const std::string& names, std::chrono::seconds lifetime) {
  const Key key(EVP_EC_gen("P-256"));
  const Certificate certificate(X509_new());
  Require(key && certificate);
  constexpr long kDay = 24 * 60 * 60;
  X509_set_version(certificate.get(), X509_VERSION_3);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -kDay);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), static_cast<long>(lifetime.count()));
  X509_set_pubkey(certificate.get(), key.get());
  X509_NAME* const subject = X509_get_subject_name(certificate.get());
  const auto* const name = reinterpret_cast<const unsigned char*>("test");
  X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, name, -1, -1, 0);
  X509_set_issuer_name(certificate.get(), subject);
  AddExtension(certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
  AddExtension(certificate.get(), NID_subject_alt_name, names);
  Require(X509_sign(certificate.get(), key.get(), EVP_sha256()) > 0);

  const Memory certificate_text(BIO_new(BIO_s_mem()));
  const Memory key_text(BIO_new(BIO_s_mem()));
  Require(PEM_write_bio_X509(certificate_text.get(), certificate.get()) == 1);
  Require(PEM_write_bio_PrivateKey(key_text.get(), key.get(), nullptr, nullptr, 0, nullptr,
                                   nullptr) == 1);
  return {Contents(certificate_text), Contents(key_text)};
}

}  // namespace qv
