// The names of stored files and folders: which are allowed, which match a pattern, and their order.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv::standin {

// The longest names that the records of listings hold, in bytes.
inline constexpr std::size_t kLongestFileName = 199;
inline constexpr std::size_t kLongestFolderName = 119;

// Returns whether a single file or folder may have this name: it must be valid on every client's
// system and have no other meaning there. Refused are "..", separators, drives, wildcards, control
// characters and devices.
[[nodiscard]] bool IsStoreName(std::string_view name);

// Returns the names in a path, which "\" or "/" separate. Returns nothing if one of them is not
// allowed, or if the path is empty, begins or ends with a separator, or is too long.
[[nodiscard]] std::optional<std::vector<std::string>> PartsOf(std::string_view path);

// Returns whether a name matches a pattern: "*" matches any characters, "?" matches one, and "*.*"
// matches every name, even one without a dot. ASCII letters match in either case. A pattern of more
// than 255 bytes matches nothing.
[[nodiscard]] bool MatchesPattern(std::string_view name, std::string_view pattern);

// Returns whether `a` comes before `b` in a listing: ignoring case first, then byte by byte.
[[nodiscard]] bool NameComesBefore(std::string_view a, std::string_view b);

}  // namespace qv::standin
