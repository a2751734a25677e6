// Which names clients may give to what the server keeps for them.
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

}  // namespace qv::standin
