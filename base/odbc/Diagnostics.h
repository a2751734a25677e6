// What a driver reports about a failed call.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qv::odbc {

// States that this room adds to those of the driver and the driver manager.
constexpr const char kNotText[] = "22021";         // the given text is not valid in the code page
constexpr const char kCellTooLong[] = "22001";     // a cell exceeds the connection's limit
constexpr const char kResultTooLarge[] = "HY001";  // the rows exceed the limit on their memory
constexpr const char kCancelled[] = "HY008";
constexpr const char kTextTooLong[] = "HY090";  // the driver manager cannot take that much
constexpr const char kNoReason[] = "HY000";     // the driver gave no reason

struct Diagnostic {
  std::string state;  // the five characters of the SQLSTATE
  std::int32_t native = 0;
  std::string text;  // up to 4 KiB
};

using Diagnostics = std::vector<Diagnostic>;

// Returns "[state] text" for each diagnostic, separated by blanks, for a log.
[[nodiscard]] inline std::string TextOf(const Diagnostics& diagnostics) {
  std::string text;
  for (const Diagnostic& diagnostic : diagnostics) {
    if (!text.empty()) text += ' ';
    text += '[' + diagnostic.state + "] " + diagnostic.text;
  }
  return text;
}

}  // namespace qv::odbc
