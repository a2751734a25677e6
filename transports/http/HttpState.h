// What all calls over HTTP share: the transport's own parameters, which hosts set by name, and the
// login tokens that servers handed out.
#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "base/text/ParameterSet.h"

namespace qv::wire {

struct HttpSettings {
  std::string token;
  bool use_tls = false;
  // Empty: the system's authorities.
  std::string ca_file;
  // Looking up the name, connecting and agreeing on TLS, together.
  std::chrono::milliseconds connect_timeout{5000};
  // How long a stretch without progress may be.
  std::chrono::milliseconds io_timeout{30000};
};

// The names and values are those of qvnetcall/transport/HttpParameters.h.
class HttpParameters : public text::ParameterSet<HttpSettings> {
 public:
  HttpParameters();
};

// Each is for the server that it came from, which its address stands for, and for no other. A
// bounded number of servers is remembered, those that handed one out last. Any thread may use it at
// any time.
class LoginTokens {
 public:
  LoginTokens();

  // Whether a text can be a login token: 1 to 255 visible ASCII characters.
  [[nodiscard]] static bool IsToken(std::string_view text);

  // A token that there is no memory for is forgotten.
  void Keep(const std::string& url, std::string_view token) noexcept;
  // Empty when that server handed out none.
  [[nodiscard]] std::string Of(const std::string& url) const;
  // What any server handed out last; empty when none did.
  [[nodiscard]] std::string Last() const;
  void Clear();

 private:
  struct Entry {
    std::string url;
    std::string token;
  };

  mutable std::mutex mutex_;
  // In the order in which the tokens came.
  std::vector<Entry> entries_;
};

}  // namespace qv::wire
