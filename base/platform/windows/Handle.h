// Handles that close themselves, conversions to the C library's files, and attempts that are
// repeated.
#pragma once

#include <windows.h>

#include <cstdio>
#include <memory>

namespace qv::platform {

struct HandleCloser {
  using pointer = HANDLE;
  void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};
// An empty handle is null, never INVALID_HANDLE_VALUE.
using HandlePtr = std::unique_ptr<HANDLE, HandleCloser>;

// Wraps the result of an opening function; INVALID_HANDLE_VALUE becomes null.
[[nodiscard]] HandlePtr Opened(HANDLE answer);

// Converts the handle to a descriptor or a stream of the C library, which owns it from then on.
// Returns -1 or null and sets errno if the C library has no room for another one.
[[nodiscard]] int DescriptorOf(HandlePtr handle);
[[nodiscard]] std::FILE* StreamOf(HandlePtr handle, const char* mode);

// Returns the handle behind a stream, which keeps owning it.
[[nodiscard]] HANDLE HandleOf(std::FILE* file);

// Reads the attributes of an open file or folder. Returns false for a pipe or a device.
[[nodiscard]] bool Inform(HANDLE handle, BY_HANDLE_FILE_INFORMATION* known);

// Returns true for the attributes of a file that is neither a folder nor any kind of link.
[[nodiscard]] bool IsFile(DWORD attributes);

// Sets errno from the last error of the system.
void SetErrno();

// Some failures pass: a file cannot be replaced while it is open anywhere, be it in another thread
// that also replaces it or in a scanner that looks into every new file. Repeats `attempt`, which
// returns the system's error or ERROR_SUCCESS, until it succeeds or fails for another reason, for
// at most a quarter of a second. Returns true if the last attempt succeeded.
template <class Attempt>
bool Patiently(const Attempt& attempt) {
  constexpr DWORD kLongestPause = 128;  // milliseconds
  for (DWORD pause = 1;; pause *= 2) {
    const DWORD error = attempt();
    const bool may_pass = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
    if (!may_pass || pause > kLongestPause) return error == ERROR_SUCCESS;
    ::Sleep(pause);
  }
}

}  // namespace qv::platform
