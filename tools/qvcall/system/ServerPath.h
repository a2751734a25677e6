// How the files and folders of a server's store are named: parts with a "\" between them, without
// one before the first or behind the last. The store itself is the empty path.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv::tool {

// What the library sends of a path, and of the name of a file under a number; it cuts longer ones,
// and the rest may be the name of something else.
constexpr std::size_t kLongestServerPath = 255;
constexpr std::size_t kLongestIdName = 251;

// What a user wrote, who may have taken "/" for "\" and may have written one too many.
[[nodiscard]] std::string ServerPath(std::string_view typed);

// Whether a user wrote the path of a folder to put something into: it ends as only those do.
[[nodiscard]] bool EndsAsFolder(std::string_view typed);

[[nodiscard]] std::string JoinServerPath(std::string_view folder, std::string_view name);

// The part behind the last "\", and the path before that.
[[nodiscard]] std::string_view LastPart(std::string_view path);
[[nodiscard]] std::string_view FolderOf(std::string_view path);

// Whether this names something inside a folder, here as well as on the server: a server may name
// its files as it likes, and nothing may be written outside the folder that a user gave.
[[nodiscard]] bool IsPlainName(std::string_view name);

}  // namespace qv::tool
