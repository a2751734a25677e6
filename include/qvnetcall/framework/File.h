#pragma once

#include <cstdio>

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/FileException.h"
#include "qvnetcall/framework/String.h"

/// A binary file, unbuffered: a full disk shows at the write that meets it. An object owns its
/// stream and is used by one thread at a time. Unless said otherwise, failures throw
/// CFileException, with cause invalidFile when nothing is open; lengths and positions are bytes.
class QVNETCALL_API CFile {
 public:
  /// How to open. The share and type bits are accepted and have no effect: every file is binary and
  /// shared.
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
    modeCreate = 0x1000,      ///< creates the file; one that exists is emptied
    modeNoTruncate = 0x2000,  ///< with modeCreate: one that exists keeps its content
    typeText = 0x4000,
    typeBinary = 0x8000
  };
  enum SeekPosition { begin = 0, current = 1, end = 2 };

  /// Nothing open.
  CFile() noexcept = default;
  /// Takes over `stream` (null: nothing open), which has not been read or written yet.
  explicit CFile(std::FILE* stream) noexcept;
  /// Opens; throws CFileException when that fails.
  CFile(const char* path, unsigned flags);
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;
  /// Closes; a failure goes unseen, so a writer calls Close.
  virtual ~CFile();

  /// Closes what is open and opens `path`. False when it fails; `error`, unless null, then tells
  /// why. Does not throw.
  [[nodiscard]] virtual bool Open(const char* path, unsigned flags,
                                  CFileException* error = nullptr);
  [[nodiscard]] bool IsOpen() const noexcept { return stream_ != nullptr; }
  /// The path of Open; empty for a stream that was taken over.
  [[nodiscard]] const CString& GetFilePath() const noexcept { return path_; }

  /// Reads up to `count` bytes and gives how many; fewer only at the end of the file.
  virtual unsigned Read(void* buffer, unsigned count);
  /// Writes all of `count` bytes; cause diskFull when there is no room.
  virtual void Write(const void* buffer, unsigned count);

  /// Moves to `offset` from the start, the current place or the end; gives the new position. Cause
  /// badSeek for a place before the start.
  virtual unsigned long long Seek(long long offset, unsigned from);
  void SeekToBegin() { Seek(0, begin); }
  unsigned long long SeekToEnd() { return Seek(0, end); }
  [[nodiscard]] virtual unsigned long long GetPosition() const;
  /// The position stays.
  [[nodiscard]] virtual unsigned long long GetLength() const;

  virtual void Flush();
  /// Closes and throws when that failed; the file is closed then, too. Nothing open: nothing
  /// happens.
  virtual void Close();
  /// Closes whatever happens; never throws.
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
