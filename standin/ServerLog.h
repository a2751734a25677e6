// The log that clients add lines to.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace qv {

// Any thread.
class ServerLog {
 public:
  explicit ServerLog(std::string path) : path_(std::move(path)) {}

  // Adds "<seconds since 1970> <kind> <text>"; control characters and backslashes are escaped, so
  // that a text cannot pass for more than one line. False when the file cannot be written.
  [[nodiscard]] bool Append(std::int32_t kind, std::string_view text);

 private:
  std::string path_;
  std::mutex mutex_;
};

}  // namespace qv
