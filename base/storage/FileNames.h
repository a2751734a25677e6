// The names of files that nobody asked for by name.
#pragma once

#include <string>
#include <string_view>

namespace qv::storage {

// Returns a new path beside `path` for the file while it is written. It is not made from the file's
// own name, which may be as long as a name can be.
[[nodiscard]] std::string PartBeside(const std::string& path);

// Returns a new name for an answer that is deleted once it has been read: "TempClient_", an
// identifier in registry form, ".txt".
[[nodiscard]] std::string NewAnswerName();

// Returns whether the path, or name, ends in a name of that form.
[[nodiscard]] bool IsAnswerName(std::string_view path);

}  // namespace qv::storage
