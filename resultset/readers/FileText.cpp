#include "FileText.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <system_error>

#include "base/call/CancelFlag.h"
#include "base/platform/Platform.h"
#include "base/platform/ThreadSlot.h"
#include "qvnetcall/framework/File.h"
#include "qvnetcall/framework/FileException.h"

namespace qv {

namespace {

constexpr std::size_t kFirstCapacity = 0x100000;
constexpr std::size_t kChunkBytes = 0x200000;
constexpr std::size_t kPieceBytes = 0x40000;

}  // namespace

bool FileText::Reserve(std::uint64_t bytes) {
  length_ = 0;
  if (bytes > std::numeric_limits<std::ptrdiff_t>::max() - kSlack) return false;
  if (bytes + kSlack <= capacity_) return true;
  const std::size_t wanted = std::max(static_cast<std::size_t>(bytes) + kSlack, kFirstCapacity);
  // The content is about to be replaced, so there is nothing to copy.
  buffer_.reset();
  capacity_ = 0;
  buffer_.reset(static_cast<char*>(std::malloc(wanted)));
  if (buffer_ == nullptr) return false;
  platform::PreferLargePages(buffer_.get(), wanted);
  capacity_ = wanted;
  return true;
}

bool FileText::LoadChunk(CFile& file, std::size_t bytes) {
  // Reads in pieces, whose bytes are still in the CPU's cache when they are searched for a NUL.
  bool ended = false;
  for (std::size_t left = bytes; left != 0;) {
    if (call::IsCancelled()) return false;
    char* const piece = buffer_.get() + length_;
    const auto wanted = static_cast<unsigned>(std::min(left, kPieceBytes));
    const std::size_t got = file.Read(piece, wanted);
    if (got == 0) return false;
    left -= got;
    if (ended) continue;
    const void* const nul = std::memchr(piece, 0, got);
    ended = nul != nullptr;
    length_ += ended ? static_cast<std::size_t>(static_cast<const char*>(nul) - piece) : got;
  }
  return true;
}

Reading FileText::Load(const char* path) try {
  if (path == nullptr) return Reading::kUnreadable;
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(platform::PathFromNarrow(path), error);
  if (error) return Reading::kUnreadable;
  CFile file(path, CFile::modeRead);
  if (!Reserve(size)) return Reading::kUnreadable;
  // A file that grows meanwhile is read up to its size at the start.
  for (std::size_t left = static_cast<std::size_t>(size); left != 0;) {
    const std::size_t chunk = std::min(left, kChunkBytes);
    if (!LoadChunk(file, chunk)) break;
    left -= chunk;
  }
  return End();
} catch (const CFileException&) {
  return Reading::kUnreadable;
}

Reading FileText::Copy(std::string_view bytes) {
  if (!Reserve(bytes.size())) return Reading::kUnreadable;
  for (std::size_t start = 0; start < bytes.size(); start += kChunkBytes) {
    const std::string_view chunk = bytes.substr(start, kChunkBytes);
    length_ += chunk.substr(0, chunk.find('\0')).copy(buffer_.get() + length_, kChunkBytes);
  }
  return End();
}

Reading FileText::End() {
  std::memset(buffer_.get() + length_, 0, kSlack);
  return call::IsCancelled() ? Reading::kCancelled : Reading::kDone;
}

FileText& KeptFileText() { return platform::OfThisThread<FileText>(); }

}  // namespace qv
