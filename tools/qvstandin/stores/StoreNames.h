// Which names clients may give to what the server keeps for them.
// Names that stand for many.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv::standin {

// The longest names that the records of listings hold, in bytes.
inline constexpr std::size_t kLongestFileName = 199;
inline constexpr std::size_t kLongestFolderName = 119;

// Whether a single file or folder may have this name: one that every client's system can have too,
// and that means nothing but itself on any of them. Not "..", nor anything with a separator, a
// drive, a wildcard or a control character, nor a device.
[[nodiscard]] bool IsStoreName(std::string_view name);

// The names that a path is made of, each of them as above, with "\" or "/" between them. Nothing
// when it is no such path: one that is empty, begins or ends with a separator, or is too long.
[[nodiscard]] std::optional<std::vector<std::string>> PartsOf(std::string_view path);

// Whether a name matches a pattern: "*" stands for any characters, "?" for one, and "*.*" for every
// name, were it without a dot. ASCII letters match in either case. A pattern of more than 255 bytes
// matches nothing.
[[nodiscard]] bool MatchesPattern(std::string_view name, std::string_view pattern);

// Whether `a` comes before `b` in a listing: letters in either case, and then byte by byte.
[[nodiscard]] bool NameComesBefore(std::string_view a, std::string_view b);

}  // namespace qv::standin
