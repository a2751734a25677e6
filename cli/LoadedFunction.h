#pragma once

namespace qv {

// A function with C linkage that some library of this program offers under that name, or null.
[[nodiscard]] void* FindLoadedFunction(const char* name);

// The same as a pointer to a function of type `Function`.
template <class Function>
[[nodiscard]] Function* LoadedFunction(const char* name) {
  return reinterpret_cast<Function*>(FindLoadedFunction(name));
}

}  // namespace qv
