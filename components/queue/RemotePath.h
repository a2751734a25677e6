// Paths on a server, as callers write them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qv::components {

// The path with slashes for backslashes. Nothing when it is empty, or has control characters, which
// could be taken for the end of a command.
[[nodiscard]] std::optional<std::string> ServerPath(std::string_view text);

}  // namespace qv::components
