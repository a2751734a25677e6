// Text in columns for people.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace qv::tool {

// Writes a line for each row, its cells aligned by display width, two blanks apart. Characters that
// a terminal would obey are spelt out.
void WriteColumns(const std::vector<std::vector<std::string>>& rows, std::ostream& out);

// A time in seconds since 1970 UTC, as the clocks of this place show it, always as long; "?" for
// one beyond the years that people write with four digits.
[[nodiscard]] std::string TimeText(std::int64_t seconds);

}  // namespace qv::tool
