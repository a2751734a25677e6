// How text looks on a terminal: how many cells it takes, and what is shown for bytes that a
// terminal would not show or would obey.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

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

}  // namespace qv::tool
