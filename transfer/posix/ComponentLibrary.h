#pragma once

namespace qv {

// Returns the function of that name in the library `file` in the folder of the running program, or
// null if either is missing. A library that has the function stays loaded for good, because the
// objects that the function makes run its code.
[[nodiscard]] void* FindFactory(const char* file, const char* function);

}  // namespace qv
