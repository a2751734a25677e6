// A growable file in memory, which stores the fields of a message that do not fit its block.
#pragma once

#include <cstdint>

// Field order and widths, and the order of the virtual operations, are shared with the transport
// libraries. Sizes and offsets are in bytes. One thread at a time.
class CQvMemFile {
 public:
  // The file grows in steps of `grow_bytes`. Nothing is allocated yet.
  explicit CQvMemFile(unsigned int grow_bytes);
  CQvMemFile(const CQvMemFile&) = delete;
  CQvMemFile& operator=(const CQvMemFile&) = delete;

  // These four manage the buffer. Alloc, Realloc and GrowFile throw std::bad_alloc, and leave the
  // file as it is, if memory runs out.
  //
  // Returns a new block of `bytes` zero bytes, which the caller owns and gives to Free or Realloc.
  virtual unsigned char* Alloc(std::uint32_t bytes);
  // Returns a block of `new_bytes` that starts with the bytes of `old`, as far as both reach,
  // followed by zeros. Frees `old`, which may be null.
  virtual unsigned char* Realloc(unsigned char* old, std::uint32_t old_bytes,
                                 std::uint32_t new_bytes);
  // Frees the block and sets the pointer to it, which must not be null, to null. The block may be
  // null.
  virtual void Free(unsigned char** buffer);
  // Makes the buffer at least `new_length` bytes long, in whole grow steps; new bytes are zero. The
  // length of the file does not change.
  virtual void GrowFile(std::uint32_t new_length);

  virtual ~CQvMemFile();

  virtual std::uint32_t GetPosition();
  // Moves the position by `offset` from the start (0), the position (1) or the end (2) and returns
  // it. Any other `from` changes nothing and returns 0xFFFFFFFF. Throws CFileException (badSeek) if
  // the position would be before the start.
  virtual std::uint32_t Seek(std::int32_t offset, std::uint32_t from);
  virtual void SeekToBegin();
  virtual std::uint32_t SeekToEnd();
  // Makes the file `new_length` bytes long and grows the buffer if necessary: bytes that were never
  // written are zero. The buffer never shrinks, so that bytes beyond a shorter length come back
  // with a longer one. A position beyond the end moves to the end. Throws std::bad_alloc, and
  // changes nothing, if the buffer cannot grow.
  virtual void SetLength(std::uint32_t new_length);
  virtual std::uint32_t GetLength();
  // Copies up to `count` bytes from the position and returns how many.
  virtual std::uint32_t Read(void* out, std::uint32_t count);
  // Copies `count` bytes to the position and moves it to their end; the file becomes longer if they
  // reach beyond its end. Does nothing for 0 bytes. Throws std::bad_alloc, and changes nothing, if
  // the buffer cannot grow.
  virtual void Write(const void* in, std::uint32_t count);
  // Does what Write does. The message writes the bodies of its fields with it.
  virtual void WriteBytes(const void* in, std::uint32_t count);
  // Releases the buffer and sets all counters to zero, including the grow step.
  virtual void Close();

  // Returns the GetLength() bytes of the file, or null while nothing is allocated.
  const unsigned char* Bytes() const { return buffer_; }
  std::uint32_t Length() const { return file_size_; }

 private:
  friend struct MessageLayout;

  std::uint32_t grow_bytes_;
  std::uint32_t position_ = 0;
  std::uint32_t buffer_size_ = 0;
  std::uint32_t file_size_ = 0;
  unsigned char* buffer_ = nullptr;
  std::int32_t auto_delete_ = 1;
};
