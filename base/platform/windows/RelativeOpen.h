// Opening by a name in a folder that is open, which the Win32 functions cannot do.
#pragma once

#include <windows.h>
#include <winternl.h>

#include <string>

#include "Handle.h"

namespace qv::platform {

struct OpenHow {
  ACCESS_MASK access = 0;
  ULONG disposition = 0;  // FILE_OPEN, FILE_CREATE
  ULONG options = 0;      // FILE_DIRECTORY_FILE, FILE_NON_DIRECTORY_FILE, or 0 for either
  void* security = nullptr;
};

// Opens what stands under `name` in `folder`; a link is opened itself, everything is shared with
// others. An empty name opens the folder once more. Null when it cannot be had, and for a name that
// the system's other functions would not find again or take for a device.
[[nodiscard]] HandlePtr OpenIn(HANDLE folder, const std::string& name, const OpenHow& how);

// Gives an open object, whose handle needs DELETE, the name `name` in `folder`; a file of that name
// is replaced.
[[nodiscard]] bool RenameInto(HANDLE object, HANDLE folder, const std::string& name);

}  // namespace qv::platform
