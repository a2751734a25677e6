#include "QvMemFile.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "qvnetcall/framework/FileException.h"

namespace {

// The grow step of a file whose own step is 0, as it is after Close.
constexpr std::uint32_t kDefaultGrowBytes = 1024;
constexpr std::uint64_t kMaxBytes = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t kSeekRefused = 0xFFFFFFFF;

[[noreturn]] void ThrowBadSeek() { throw CFileException(CFileException::badSeek, -1); }

bool IsNegative(std::uint32_t offset) { return static_cast<std::int32_t>(offset) < 0; }

}  // namespace

CQvMemFile::CQvMemFile(unsigned int grow_bytes) : grow_bytes_(grow_bytes) {}

CQvMemFile::~CQvMemFile() {
  if (buffer_ != nullptr) CQvMemFile::Close();
}

unsigned char* CQvMemFile::Alloc(std::uint32_t bytes) { return new unsigned char[bytes](); }

unsigned char* CQvMemFile::Realloc(unsigned char* old, std::uint32_t old_bytes,
                                   std::uint32_t new_bytes) {
  unsigned char* const block = Alloc(new_bytes);
  const std::uint32_t kept = std::min(old_bytes, new_bytes);
  if (old != nullptr && kept != 0) std::memcpy(block, old, kept);
  delete[] old;
  return block;
}

void CQvMemFile::Free(unsigned char** buffer) {
  delete[] * buffer;
  *buffer = nullptr;
}

void CQvMemFile::GrowFile(std::uint32_t new_length) {
  if (new_length <= buffer_size_) return;
  if (grow_bytes_ == 0) grow_bytes_ = kDefaultGrowBytes;
  const std::uint64_t missing = std::uint64_t{new_length} - buffer_size_;
  const std::uint64_t steps = (missing + grow_bytes_ - 1) / grow_bytes_;
  const std::uint64_t new_size = buffer_size_ + steps * grow_bytes_;
  // The counters are 32 bits wide; a size that they cannot hold cannot be allocated.
  if (new_size > kMaxBytes) throw std::bad_alloc();
  const auto size = static_cast<std::uint32_t>(new_size);
  buffer_ = buffer_ != nullptr ? Realloc(buffer_, buffer_size_, size) : Alloc(size);
  buffer_size_ = size;
}

std::uint32_t CQvMemFile::GetPosition() { return position_; }

std::uint32_t CQvMemFile::Seek(std::int32_t offset, std::uint32_t from) {
  const std::uint32_t bases[] = {0, position_, file_size_};
  if (from >= std::size(bases)) return kSeekRefused;
  const std::uint32_t target = bases[from] + static_cast<std::uint32_t>(offset);
  if (IsNegative(target)) ThrowBadSeek();
  position_ = target;
  return position_;
}

void CQvMemFile::SeekToBegin() { position_ = 0; }

std::uint32_t CQvMemFile::SeekToEnd() {
  if (IsNegative(file_size_)) ThrowBadSeek();
  position_ = file_size_;
  return position_;
}

void CQvMemFile::SetLength(std::uint32_t new_length) {
  if (new_length > buffer_size_) GrowFile(new_length);
  position_ = std::min(position_, new_length);
  file_size_ = new_length;
}

std::uint32_t CQvMemFile::GetLength() { return file_size_; }

std::uint32_t CQvMemFile::Read(void* out, std::uint32_t count) {
  if (count == 0 || position_ > file_size_) return 0;
  count = std::min(count, file_size_ - position_);
  if (count == 0) return 0;
  std::memcpy(out, buffer_ + position_, count);
  position_ += count;
  return count;
}

void CQvMemFile::Write(const void* in, std::uint32_t count) {
  if (count == 0) return;
  const std::uint64_t end = std::uint64_t{position_} + count;
  if (end > kMaxBytes) throw std::bad_alloc();
  if (end > buffer_size_) GrowFile(static_cast<std::uint32_t>(end));
  std::memcpy(buffer_ + position_, in, count);
  position_ = static_cast<std::uint32_t>(end);
  file_size_ = std::max(file_size_, position_);
}

void CQvMemFile::WriteBytes(const void* in, std::uint32_t count) { CQvMemFile::Write(in, count); }

void CQvMemFile::Close() {
  grow_bytes_ = position_ = buffer_size_ = file_size_ = 0;
  if (buffer_ != nullptr && auto_delete_ != 0) Free(&buffer_);
  buffer_ = nullptr;
}
