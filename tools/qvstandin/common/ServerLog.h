// The log that clients add lines to.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace qv::standin {

// The text with its control characters and backslashes escaped, so that it cannot pass for more
// than one line nor steer a terminal.
[[nodiscard]] std::string OnOneLine(std::string_view text);

// Any thread.
class ServerLog {
 public:
  explicit ServerLog(std::string path) : path_(std::move(path)) {}

  // Adds "<seconds since 1970> <kind> <text on one line>". False when the file cannot be written.
  [[nodiscard]] bool Append(std::int32_t kind, std::string_view text);

 private:
  std::string path_;
  std::mutex mutex_;
};

}  // namespace qv::standin
