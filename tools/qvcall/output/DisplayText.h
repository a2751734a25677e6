// How text looks on a terminal: how many cells it takes, and what is shown for bytes that a
// terminal would not show or would obey.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace qv::tool {

// 0 for marks that join the character before them, 2 for wide characters, else 1.
[[nodiscard]] int CellsOf(char32_t character);

// Appends `text` to `line` as it can be shown and returns the cells that it takes. Control
// characters and those that turn the direction of writing are spelt out ("\n", "\x1b", "\u202e"),
// an invalid byte becomes U+FFFD, or "?" where the system's encoding lacks that.
std::size_t AppendVisible(std::string_view text, std::string& line);

// `text` as it can be shown.
[[nodiscard]] std::string Visible(std::string_view text);

// `text` as it can be shown in that many cells, at least three; "..." ends what had to be cut.
[[nodiscard]] std::string VisibleStart(std::string_view text, std::size_t cells);

// Writes a line for each row, its cells aligned by display width, two blanks apart. Characters that
// a terminal would obey are spelt out.
void WriteColumns(const std::vector<std::vector<std::string>>& rows, std::ostream& out);

// A time in seconds since 1970 UTC, as the clocks of this place show it, always as long; "?" for
// one beyond the years that people write with four digits.
[[nodiscard]] std::string TimeText(std::int64_t seconds);

}  // namespace qv::tool
