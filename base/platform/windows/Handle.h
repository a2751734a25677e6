// Handles that close themselves, what the C library makes of them, and attempts that are repeated.
#pragma once

#include <windows.h>

#include <cstdio>
#include <memory>

namespace qv::platform {

struct HandleCloser {
  using pointer = HANDLE;
  void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};
// Null stands for none, never INVALID_HANDLE_VALUE.
using HandlePtr = std::unique_ptr<HANDLE, HandleCloser>;

// What the system answered when it was to open something.
[[nodiscard]] HandlePtr Opened(HANDLE answer);

// The handle as a descriptor of the C library or a stream, which owns it from then on; -1 or null,
// and errno, when there is no room for one more.
[[nodiscard]] int DescriptorOf(HandlePtr handle);
[[nodiscard]] std::FILE* StreamOf(HandlePtr handle, const char* mode);

// The handle under a stream, which still owns it.
[[nodiscard]] HANDLE HandleOf(std::FILE* file);

// What is known about an open file or folder; false for a pipe or a device.
[[nodiscard]] bool Inform(HANDLE handle, BY_HANDLE_FILE_INFORMATION* known);

// Whether those are the attributes of a file, neither a folder nor a link of any kind.
[[nodiscard]] bool IsFile(DWORD attributes);

// Says in errno why the system's last call failed.
void SetErrno();

// What fails for a moment: a file cannot be replaced while anybody has it open, be it another
// thread that replaces it as well, or what looks into every new file on the machine.
//
// Makes attempts, which give the system's error or ERROR_SUCCESS, until one succeeds or fails for
// another reason than that; for a quarter of a second at most. Whether the last one succeeded.
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
