// A part of libraries that are never unloaded: it pins them as soon as they are loaded.
#include <windows.h>

namespace {

// Any object inside the library will do to tell which one it is.
[[maybe_unused]] const bool pinned = [] {
  HMODULE library = nullptr;
  return ::GetModuleHandleExA(
             GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
             reinterpret_cast<LPCSTR>(&pinned), &library) != FALSE;
}();

}  // namespace
