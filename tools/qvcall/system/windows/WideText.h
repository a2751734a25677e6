// Converts between narrow text, in the code page of the process, and the system's wide text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qv::tool {

// The system counts in int, and narrow text can have four bytes per unit.
constexpr std::size_t kLongestText = std::size_t{1} << 28;

// Returns nullopt if `text` is not valid in the code page.
[[nodiscard]] std::optional<std::wstring> WideFromNarrow(std::string_view text);

// Returns the nearest text: characters that the code page lacks are replaced.
[[nodiscard]] std::string NearestNarrow(std::wstring_view text);

// Returns nullopt if the code page lacks a character.
[[nodiscard]] std::optional<std::string> NarrowFromWide(std::wstring_view text);

}  // namespace qv::tool
