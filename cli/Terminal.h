#pragma once

#include <cstddef>

namespace qv {

// How many cells a line of the terminal has that standard error goes to; 0 when it goes to none, or
// to one that cannot go back to the start of a line.
[[nodiscard]] std::size_t TerminalWidth();

}  // namespace qv
