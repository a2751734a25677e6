// What the system knows of paths. Narrow text is in the system's own encoding, as the command line
// brings it and the library takes it; std::filesystem reads it in another one on some systems. So
// nothing makes paths of narrow text, or narrow text of paths, but what is declared here; all but
// LocalFiles.cpp have no need to.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace qv::tool {

[[nodiscard]] std::filesystem::path PathFromNarrow(const std::string& path);

// None when narrow text cannot say the path: what is nearest to it may name something else.
[[nodiscard]] std::optional<std::string> NarrowFromPath(const std::filesystem::path& path);

// What is nearest to it, for people to read.
[[nodiscard]] std::string ShownPath(const std::filesystem::path& path);

// Whether the path itself leads elsewhere, whatever is there.
[[nodiscard]] bool IsLink(const std::filesystem::path& path);

// Whether a file that gets this name, which is a plain one, has it then: not a device that the
// system sees in it, nor a name that the system cuts.
[[nodiscard]] bool KeepsName(const std::string& name);

// The same for all paths that differ only in what the system does not tell apart.
[[nodiscard]] std::string PathKey(const std::string& path);

// Lets those have the file who have `like`, which is beside it. As far as the system allows.
void GiveRightsOf(const std::filesystem::path& like, const std::filesystem::path& file);

}  // namespace qv::tool
