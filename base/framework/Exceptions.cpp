// CException and what derives from it.
#include <array>
#include <cerrno>
#include <cstddef>

#include "qvnetcall/framework/Exception.h"
#include "qvnetcall/framework/FileException.h"
#include "qvnetcall/framework/InvalidArgException.h"

namespace {

constexpr std::array<const char*, 15> kTexts = {"no error",
                                                "file error",
                                                "file not found",
                                                "bad path",
                                                "too many open files",
                                                "access denied",
                                                "invalid file",
                                                "cannot remove the current folder",
                                                "folder is full",
                                                "bad seek",
                                                "hardware error",
                                                "sharing violation",
                                                "lock violation",
                                                "disk full",
                                                "end of file"};

}  // namespace

CException::~CException() = default;

const char* CException::what() const noexcept { return "exception"; }

CInvalidArgException::~CInvalidArgException() = default;

const char* CInvalidArgException::what() const noexcept { return "invalid argument"; }

void AfxThrowInvalidArgException() { throw CInvalidArgException(); }

CFileException::CFileException(int cause, long os_error, const char* file_name)
    : m_cause(cause), m_lOsError(os_error), m_strFileName(file_name) {}

CFileException::~CFileException() = default;

const char* CFileException::what() const noexcept {
  const bool known = m_cause >= 0 && static_cast<std::size_t>(m_cause) < kTexts.size();
  return known ? kTexts[static_cast<std::size_t>(m_cause)] : kTexts[genericException];
}

int CFileException::OsErrorToException(long os_error) noexcept {
  switch (os_error) {
    case 0:
      return none;
    case ENOENT:
      return fileNotFound;
    case ENOTDIR:
    case ENAMETOOLONG:
      return badPath;
    case EMFILE:
    case ENFILE:
      return tooManyOpenFiles;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case EEXIST:
      return accessDenied;
    case EBADF:
      return invalidFile;
    case EINVAL:
    case ESPIPE:
      return badSeek;
    case EIO:
      return hardIO;
    case EBUSY:
    case ETXTBSY:
      return sharingViolation;
    case EDEADLK:
    case ENOLCK:
      return lockViolation;
    case ENOSPC:
    case EFBIG:
      return diskFull;
    default:
      return genericException;
  }
}

void CFileException::ThrowOsError(long os_error, const char* file_name) {
  throw CFileException(OsErrorToException(os_error), os_error, file_name);
}
