// State of the HTTP transport: its parameters, which hosts set by name, and the login tokens that
// servers issued.
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
  // Empty for the system's authorities.
  std::string ca_file;
  // For name lookup, connecting and the TLS handshake together.
  std::chrono::milliseconds connect_timeout{5000};
  // The longest time without progress.
  std::chrono::milliseconds io_timeout{30000};
};

// qvnetcall/transport/HttpParameters.h documents the names and values.
class HttpParameters : public text::ParameterSet<HttpSettings> {
 public:
  HttpParameters();
};

// A token is sent only to the server that issued it, which is identified by its address. Tokens of
// a bounded number of servers are kept, the most recent ones. Thread-safe.
class LoginTokens {
 public:
  LoginTokens();

  // Returns true for 1 to 255 visible ASCII characters.
  [[nodiscard]] static bool IsToken(std::string_view text);

  // Does nothing if memory runs out.
  void Keep(const std::string& url, std::string_view token) noexcept;
  // Returns an empty text if that server has issued none.
  [[nodiscard]] std::string Of(const std::string& url) const;
  // Returns the token that was issued last by any server, or an empty text.
  [[nodiscard]] std::string Last() const;
  void Clear();

 private:
  struct Entry {
    std::string url;
    std::string token;
  };

  mutable std::mutex mutex_;
  // Ordered by the time at which the token was received.
  std::vector<Entry> entries_;
};

}  // namespace qv::wire
