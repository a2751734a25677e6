// Handles that close themselves, and what the C library makes of them.
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

}  // namespace qv::platform
