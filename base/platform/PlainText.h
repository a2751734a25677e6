// Texts of others, made fit to be shown: errors of servers, drivers and systems.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv::platform {

// Returns `text`, which is in the narrow code page, with a blank for each control character
// (text::IsControlCharacter) and cut to `longest` bytes between two characters. If it is not valid
// in the code page, every byte beyond ASCII becomes "?".
[[nodiscard]] std::string PlainText(std::string_view text, std::size_t longest);

// Converts UTF-8 to the narrow code page. Bytes that are not UTF-8, and characters that the code
// page lacks, become its replacement character.
[[nodiscard]] std::string NarrowFromUtf8(std::string_view text);

}  // namespace qv::platform
