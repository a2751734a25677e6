// The transport's own parameters: what hosts set by name.
#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

namespace qv {

// The values as one exchange uses them.
struct TransportSettings {
  // Whether a user interface may report what is going on; kept for the host, which reads it back.
  std::string display_messages = "1";
  std::string token;
  std::chrono::milliseconds connect_timeout{5000};
  // How long a stretch without progress may be.
  std::chrono::milliseconds io_timeout{30000};
  // How often a bad network is probed at most.
  std::chrono::milliseconds retry_after{3000};
};

// Any thread may use it at any time.
//
//   name                values
//   dispmsg             any text
//   token               any text; travels with every request
//   connect_timeout_ms  1 to 3600000
//   io_timeout_ms       1 to 3600000
//   retry_after_ms      1 to 3600000
//   tls                 "0": this transport does not encrypt and says so rather than pretend
//   ca_file             empty: only an encrypting transport would use it
class Parameters {
 public:
  // Nothing for an unknown name.
  [[nodiscard]] std::optional<std::string> Get(const std::string& name) const;
  // False, and no change, for an unknown name or a value that it cannot have.
  [[nodiscard]] bool Set(const std::string& name, const std::string& value);
  [[nodiscard]] TransportSettings Snapshot() const;

 private:
  mutable std::mutex mutex_;
  TransportSettings settings_;
};

}  // namespace qv
