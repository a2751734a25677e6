// What a driver says about a call that failed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qv::odbc {

// States of our own, beside those of the driver and the driver manager.
constexpr const char kNotText[] = "22021";      // what was given is no text of the code page
constexpr const char kCellTooLong[] = "22001";  // a cell is longer than the connection allows
constexpr const char kCancelled[] = "HY008";
constexpr const char kTextTooLong[] = "HY090";  // more than can be passed to the driver manager
constexpr const char kNoReason[] = "HY000";     // nothing was said

struct Diagnostic {
  std::string state;  // the five characters of the SQLSTATE
  std::int32_t native = 0;
  std::string text;  // up to 4 KiB
};

using Diagnostics = std::vector<Diagnostic>;

// For a log: "[state] text", several after one another.
[[nodiscard]] inline std::string TextOf(const Diagnostics& diagnostics) {
  std::string text;
  for (const Diagnostic& diagnostic : diagnostics) {
    if (!text.empty()) text += ' ';
    text += '[' + diagnostic.state + "] " + diagnostic.text;
  }
  return text;
}

}  // namespace qv::odbc
