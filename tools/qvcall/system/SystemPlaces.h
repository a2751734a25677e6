// Finds the user's caches and the functions of loaded libraries and components on each system, with
// the words that messages use for them there.
#pragma once

#include <string>
#include <string_view>

namespace qv::tool {

// The services that files are queued for.
enum class Service { kFtp, kCloud };

// Returns the folder for the caches of this user's programs, empty if the environment names none.
[[nodiscard]] std::string CachesOfUser();
// Returns the words for that failure, to be followed by "a place for ...".
[[nodiscard]] std::string_view NoCachesOfUser();

// Returns the advice for a missing component.
[[nodiscard]] std::string_view AdviceOnMissing(Service service);

// Returns the function with C linkage and that name from a library of this program, or null.
[[nodiscard]] void* FindLoadedFunction(const char* name);

// Returns such a function from a component's library beside this program, which is loaded and stays
// loaded. `component` is its name without the system's prefix and suffix. Always returns null on
// systems that do not look for components there.
[[nodiscard]] void* FindComponentFunction(const char* component, const char* name);

// Return these functions as pointers of type `Function`.
template <class Function>
[[nodiscard]] Function* LoadedFunction(const char* name) {
  return reinterpret_cast<Function*>(FindLoadedFunction(name));
}
template <class Function>
[[nodiscard]] Function* ComponentFunction(const char* component, const char* name) {
  return reinterpret_cast<Function*>(FindComponentFunction(component, name));
}

}  // namespace qv::tool
