// Between narrow text, which is in the code page of the process, and the system's own.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qv::tool {

// The system counts in int, and narrow text may have four bytes for each unit.
constexpr std::size_t kLongestText = std::size_t{1} << 28;

// None when that is no text of the code page.
[[nodiscard]] std::optional<std::wstring> WideFromNarrow(std::string_view text);

// What is nearest to it in the code page: other characters stand for those that it lacks.
[[nodiscard]] std::string NearestNarrow(std::wstring_view text);

// None when the code page lacks any of it.
[[nodiscard]] std::optional<std::string> NarrowFromWide(std::wstring_view text);

}  // namespace qv::tool
