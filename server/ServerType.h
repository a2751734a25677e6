// The kind of the module's server, which decides over which transport it is reached.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace qv {

// The type of the server that was looked up last. Any thread.
class ServerTypeMemo {
 public:
  // Returns the type of that server, or nothing if another server is remembered.
  [[nodiscard]] std::optional<std::string> Find(std::string_view server, unsigned long port) const;
  void Remember(std::string_view server, unsigned long port, std::string_view type);
  void Clear();

 private:
  struct Entry {
    std::string server;
    unsigned long port;
    std::string type;
  };

  mutable std::mutex mutex_;
  std::optional<Entry> entry_;
};

// Returns true if the module's server is a web server. Looks its type up, which may read the
// configuration or probe the server.
[[nodiscard]] bool IsWebServer();

}  // namespace qv
