// Programs that do the same work, measured from their start to their end.
#pragma once

#include <string>
#include <vector>

namespace qv::bench {

// Runs a program, found on the path, and drops its output but for its errors. Throws
// std::runtime_error if it fails.
void RunProgram(const std::vector<std::string>& words);

}  // namespace qv::bench
