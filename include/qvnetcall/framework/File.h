#pragma once

#include <cstdio>

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/FileException.h"
#include "qvnetcall/framework/String.h"

/// A binary file. It is not buffered, so a full disk is reported by the very write that meets it.
/// An object owns its stream; one thread at a time may use it. Unless a comment says otherwise, a
/// failure throws CFileException, with the cause invalidFile if no file is open. Lengths and
/// positions are in bytes.
class QVNETCALL_API CFile {
 public:
  /// How to open a file. The share and type bits have no effect: every file is binary and shared.
  enum OpenFlags : unsigned {
    modeRead = 0x0000,
    modeWrite = 0x0001,
    modeReadWrite = 0x0002,
    shareCompat = 0x0000,
    shareExclusive = 0x0010,
    shareDenyWrite = 0x0020,
    shareDenyRead = 0x0030,
    shareDenyNone = 0x0040,
    modeNoInherit = 0x0080,
    modeCreate = 0x1000,      ///< create the file; empty it if it exists
    modeNoTruncate = 0x2000,  ///< with modeCreate: keep the content of a file that exists
    typeText = 0x4000,
    typeBinary = 0x8000
  };
  /// Where Seek counts from: the start of the file, the current position or the end.
  enum SeekPosition { begin = 0, current = 1, end = 2 };

  /// No file is open.
  CFile() noexcept = default;
  /// Takes ownership of `stream`, which must not have been read or written yet. If it is null, no
  /// file is open.
  explicit CFile(std::FILE* stream) noexcept;
  /// Opens `path`. Throws CFileException if that fails.
  CFile(const char* path, unsigned flags);
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;
  /// Closes the file. Errors are lost, so call Close after writing.
  virtual ~CFile();

  /// Closes the file that is open and opens `path`. Returns true. Returns false if that fails, with
  /// the reason in `error` unless that is null. Throws nothing but std::bad_alloc.
  [[nodiscard]] virtual bool Open(const char* path, unsigned flags,
                                  CFileException* error = nullptr);
  [[nodiscard]] bool IsOpen() const noexcept { return stream_ != nullptr; }
  /// Returns the path that was opened; empty for a stream that was taken over.
  [[nodiscard]] const CString& GetFilePath() const noexcept { return path_; }

  /// Reads up to `count` bytes. Returns how many were read, which is fewer only at the end of the
  /// file.
  virtual unsigned Read(void* buffer, unsigned count);
  /// Writes all of `count` bytes. If there is no space left, the cause is diskFull.
  virtual void Write(const void* buffer, unsigned count);

  /// Moves to the position that is `offset` bytes from `from`, which is one of SeekPosition.
  /// Returns the new position. If that would be before the start of the file, the cause is badSeek.
  virtual unsigned long long Seek(long long offset, unsigned from);
  /// Move to the start and to the end of the file. SeekToEnd returns the new position.
  void SeekToBegin() { Seek(0, begin); }
  unsigned long long SeekToEnd() { return Seek(0, end); }
  /// Returns the current position.
  [[nodiscard]] virtual unsigned long long GetPosition() const;
  /// Returns the length of the file. The position does not change.
  [[nodiscard]] virtual unsigned long long GetLength() const;

  /// Hands everything that was written to the operating system.
  virtual void Flush();
  /// Closes the file. The file is closed even if this throws. Has no effect if no file is open.
  virtual void Close();
  /// Closes the file and ignores errors. Never throws.
  virtual void Abort() noexcept;

 private:
  enum class Last { kNone, kRead, kWrite };

  std::FILE* Opened() const;
  void Turn(Last next);
  [[noreturn]] void ThrowLast(int os_error) const;

  std::FILE* stream_ = nullptr;
  Last last_ = Last::kNone;
  CString path_;
};
