// Certificates that are made when a test needs them.
#pragma once

#include <chrono>
#include <string>

namespace qv {

// Both in PEM.
struct TestCertificate {
  std::string certificate;
  std::string key;
};

// A certificate that vouches for itself, so that it also serves as its own authority. `names` is
// what it is for, as in "IP:127.0.0.1" or "DNS:a.example"; it is valid for `lifetime` from now,
// which may be over already.
[[nodiscard]] TestCertificate MakeCertificate(const std::string& names,
                                              std::chrono::seconds lifetime);

}  // namespace qv
