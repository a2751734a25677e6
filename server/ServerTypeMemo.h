// Remembers the kind of the server that was asked for last.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qv {

// One entry, as the last look-up left it. Reading and replacing it from several threads is free of
// races without a lock: entries are never changed once they can be seen, and are freed only with
// the memo. A process knows few servers, so few entries are ever made.
class ServerTypeMemo {
 public:
  ServerTypeMemo() = default;
  ~ServerTypeMemo() { Clear(); }
  ServerTypeMemo(const ServerTypeMemo&) = delete;
  ServerTypeMemo& operator=(const ServerTypeMemo&) = delete;

  // The type of that server, when it is the one that is remembered.
  [[nodiscard]] std::optional<std::string> Find(std::string_view server, unsigned long port) const;
  void Remember(std::string_view server, unsigned long port, std::string_view type);
  // Forgets everything; while nobody else uses the memo.
  void Clear();

 private:
  struct Entry {
    std::string server;
    unsigned long port;
    std::string type;
    Entry* next;
  };

  Entry* FindOrAdd(std::string_view server, unsigned long port, std::string_view type);

  std::atomic<const Entry*> current_ = nullptr;
  std::atomic<Entry*> entries_ = nullptr;
};

}  // namespace qv
