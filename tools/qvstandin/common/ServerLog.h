// The log to which clients add lines.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace qv::standin {

// Returns the text with its control characters and backslashes escaped, so that it stays on one
// line and cannot control a terminal.
[[nodiscard]] std::string OnOneLine(std::string_view text);

// Any thread may use it.
class ServerLog {
 public:
  explicit ServerLog(std::string path) : path_(std::move(path)) {}

  // Adds "<seconds since 1970> <kind> <text on one line>". Returns false if the file
  // cannot be written.
  [[nodiscard]] bool Append(std::int32_t kind, std::string_view text);

 private:
  std::string path_;
  std::mutex mutex_;
};

}  // namespace qv::standin
