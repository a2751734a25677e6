#pragma once

#include "qvnetcall/framework/Exception.h"
#include "qvnetcall/framework/String.h"

/// Thrown if a file operation failed: its cause, the system's error number and the file.
class QVNETCALL_API CFileException : public CException {
 public:
  /// The causes.
  enum {
    none = 0,
    genericException = 1,
    fileNotFound = 2,
    badPath = 3,
    tooManyOpenFiles = 4,
    accessDenied = 5,
    invalidFile = 6,
    removeCurrentDir = 7,
    directoryFull = 8,
    badSeek = 9,
    hardIO = 10,
    sharingViolation = 11,
    lockViolation = 12,
    diskFull = 13,
    endOfFile = 14
  };

  /// `cause` is one of the values above, `os_error` an errno value or -1 for none. `file_name` is
  /// copied; null counts as empty.
  explicit CFileException(int cause = none, long os_error = -1, const char* file_name = nullptr);
  CFileException(const CFileException&) = default;
  CFileException& operator=(const CFileException&) = default;
  ~CFileException() override;

  /// Returns a short English text for the cause. The class owns it; do not free it.
  [[nodiscard]] const char* what() const noexcept override;

  /// Returns the cause for an errno value, or genericException if there is none for it. Any thread
  /// may call it.
  [[nodiscard]] static int OsErrorToException(long os_error) noexcept;

  /// Throws the exception for an errno value. `file_name` is copied; null counts as empty. Any
  /// thread may call it.
  [[noreturn]] static void ThrowOsError(long os_error, const char* file_name = nullptr);

  int m_cause;
  long m_lOsError;
  CString m_strFileName;
};
