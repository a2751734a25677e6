// Linked into libraries that must never be unloaded: pins the library as soon as it is loaded.
#include <windows.h>

namespace {

// Any object in the library identifies it.
[[maybe_unused]] const bool pinned = [] {
  HMODULE library = nullptr;
  return ::GetModuleHandleExA(
             GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
             reinterpret_cast<LPCSTR>(&pinned), &library) != FALSE;
}();

}  // namespace
