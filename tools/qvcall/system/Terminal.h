#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace qv::tool {

// How many cells a line of the terminal has that standard error goes to; 0 when it goes to none, or
// to one that cannot go back to the start of a line.
[[nodiscard]] std::size_t TerminalWidth();

// Asks for a line on the terminal that the program was started from, wherever its input and output
// go, and does not show what is typed. Nothing when there is no terminal, or no line comes. Before
// any other thread is made, and while nobody else watches for interrupts.
[[nodiscard]] std::optional<std::string> AskForSecret(const std::string& question);

}  // namespace qv::tool
