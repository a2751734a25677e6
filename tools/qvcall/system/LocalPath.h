// Conversions between paths and narrow text, and rules on paths that differ by system. Narrow text
// is in the system's own encoding, which the command line and the library use, but std::filesystem
// assumes another encoding on some systems. So only these functions convert, and only
// LocalFiles.cpp and the sources for each system need them.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace qv::tool {

[[nodiscard]] std::filesystem::path PathFromNarrow(const std::string& path);

// Returns nullopt if narrow text cannot represent the path: the nearest text may name another file.
[[nodiscard]] std::optional<std::string> NarrowFromPath(const std::filesystem::path& path);

// Returns the nearest text, for messages.
[[nodiscard]] std::string ShownPath(const std::filesystem::path& path);

// Whether the path itself is a link, even if it leads nowhere.
[[nodiscard]] bool IsLink(const std::filesystem::path& path);

// Whether a file that is created with this plain name gets exactly this name: the system takes some
// names for devices and truncates others.
[[nodiscard]] bool KeepsName(const std::string& name);

// Returns a key that is equal for paths that the system treats as equal.
[[nodiscard]] std::string PathKey(const std::string& path);

// Gives `file` the permissions of `like`, which is in the same folder, as far as the system allows.
void GiveRightsOf(const std::filesystem::path& like, const std::filesystem::path& file);

}  // namespace qv::tool
