// Where each system keeps what the tool looks for, and what messages call those places there.
#pragma once

#include <string>
#include <string_view>

namespace qv::tool {

// The services that queued files go to.
enum class Service { kFtp, kCloud };

// The folder for the caches of this user's programs; empty when the environment does not name it.
[[nodiscard]] std::string CachesOfUser();
// Says that the environment does not.
[[nodiscard]] std::string_view NoCachesOfUser();

// What to do when there is no component for the service.
[[nodiscard]] std::string_view AdviceOnMissing(Service service);

// A function with C linkage that some library of this program offers under that name, or null.
[[nodiscard]] void* FindLoadedFunction(const char* name);

// The same of a component's library beside this program, which is loaded for it and stays;
// `component` is its name without what the system puts around it. Null, too, where components are
// not looked for there.
[[nodiscard]] void* FindComponentFunction(const char* component, const char* name);

// These as pointers to functions of type `Function`.
template <class Function>
[[nodiscard]] Function* LoadedFunction(const char* name) {
  return reinterpret_cast<Function*>(FindLoadedFunction(name));
}
template <class Function>
[[nodiscard]] Function* ComponentFunction(const char* component, const char* name) {
  return reinterpret_cast<Function*>(FindComponentFunction(component, name));
}

}  // namespace qv::tool
