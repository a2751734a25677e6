#include "Handle.h"

#include <fcntl.h>
#include <io.h>

#include <cerrno>
#include <utility>

namespace qv::platform {

HandlePtr Opened(HANDLE answer) {
  return HandlePtr(answer != INVALID_HANDLE_VALUE ? answer : nullptr);
}

int DescriptorOf(HandlePtr handle) {
  const int descriptor =
      ::_open_osfhandle(reinterpret_cast<intptr_t>(handle.get()), _O_BINARY | _O_NOINHERIT);
  if (descriptor >= 0) static_cast<void>(handle.release());  // the descriptor closes it
  return descriptor;
}

std::FILE* StreamOf(HandlePtr handle, const char* mode) {
  const int descriptor = DescriptorOf(std::move(handle));
  if (descriptor < 0) return nullptr;
  std::FILE* const stream = ::_fdopen(descriptor, mode);
  if (stream == nullptr) ::_close(descriptor);
  return stream;
}

HANDLE HandleOf(std::FILE* file) {
  return reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(file)));
}

bool Inform(HANDLE handle, BY_HANDLE_FILE_INFORMATION* known) {
  return ::GetFileType(handle) == FILE_TYPE_DISK &&
         ::GetFileInformationByHandle(handle, known) != FALSE;
}

bool IsFile(DWORD attributes) {
  return (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) == 0;
}

void SetErrno() {
  switch (::GetLastError()) {
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      errno = EEXIST;
      break;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
      errno = ENOENT;
      break;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      errno = ENOSPC;
      break;
    case ERROR_TOO_MANY_OPEN_FILES:
      errno = EMFILE;
      break;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
      errno = ENOMEM;
      break;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
      errno = EACCES;
      break;
    default:
      errno = EIO;
  }
}

}  // namespace qv::platform
