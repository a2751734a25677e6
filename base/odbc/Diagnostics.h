// What a driver reports about a failed call.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qvnetcall/ResultCodes.h"

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
[[nodiscard]] std::string TextOf(const Diagnostics& diagnostics);

// Returns the class of the failures that have this state, or nothing if the state says too little.
// States of the standard, of ODBC and of PostgreSQL are known. docs/errors.md lists them.
[[nodiscard]] std::optional<error::Class> ClassOfState(std::string_view state);

}  // namespace qv::odbc
