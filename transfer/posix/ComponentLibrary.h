#pragma once

namespace qv {

// The function of that name in the library `file` in the folder of the program that runs; null when
// either is missing. A library that has the function stays loaded for good: what the function makes
// runs the library's code.
[[nodiscard]] void* FindFactory(const char* file, const char* function);

}  // namespace qv
