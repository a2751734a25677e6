// Paths in a server's store: names separated by "\", without one at the start or the end. The empty
// path is the store itself.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv::tool {

// The library truncates longer paths, and longer names of files under a number, and the shortened
// text could name another file.
constexpr std::size_t kLongestServerPath = 255;
constexpr std::size_t kLongestIdName = 251;

// Converts a path as a user writes it, possibly with "/" and with superfluous separators.
[[nodiscard]] std::string ToServerPath(std::string_view typed);

// Whether a user wrote the path as that of a folder, with a separator at its end.
[[nodiscard]] bool EndsAsFolder(std::string_view typed);

[[nodiscard]] std::string JoinServerPath(std::string_view folder, std::string_view name);

// Return the name after the last "\", and the path before it.
[[nodiscard]] std::string_view LastPart(std::string_view path);
[[nodiscard]] std::string_view FolderOf(std::string_view path);

// Whether the name stays inside its folder, on this machine and on the server. A server can send
// any names, and nothing may be written outside the folder that the user gave.
[[nodiscard]] bool IsPlainName(std::string_view name);

}  // namespace qv::tool
