#pragma once

#include <string_view>

#include "CommandLine.h"

namespace qv::tool {

// What is wrong with options that are right each by itself, in one sentence; empty when they go
// together.
[[nodiscard]] std::string_view BrokenRule(const CommandLine& command);

}  // namespace qv::tool
