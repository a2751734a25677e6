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

// Opens `name` in `folder`, sharing it with everybody; a link is opened itself. An empty name
// reopens the folder. Returns null on failure, and for a name that Win32 functions would not find
// again or take for a device.
[[nodiscard]] HandlePtr OpenIn(HANDLE folder, const std::string& name, const OpenHow& how);

// Renames an open object, whose handle needs DELETE, to `name` in `folder`; an existing file of
// that name is replaced.
[[nodiscard]] bool RenameInto(HANDLE object, HANDLE folder, const std::string& name);

}  // namespace qv::platform
