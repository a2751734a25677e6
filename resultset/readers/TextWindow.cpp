#include "TextWindow.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "base/call/CancelFlag.h"
#include "base/platform/ThreadSlot.h"

namespace qv {

namespace {

constexpr std::uint64_t kChunkBytes = 0x200000;
// A stretch, and the cells that are made of it, fit the caches that a core has for itself.
constexpr std::size_t kUsualPieceBytes = 0x40000;

std::atomic<std::size_t> set_piece_bytes = 0;

}  // namespace

void TextWindow::Start(const TextSource& source, std::uint64_t offset, const Sizes& sizes) {
  source_ = &source;
  sizes_ = sizes;
  length_ = 0;
  base_ = offset;
  next_ = offset;
  size_ = source.Size();
  met_nul_ = false;
  status_ = Reading::kDone;
  source.IsReadable() ? Fill(sizes.first) : Fail(Reading::kUnreadable);
}

bool TextWindow::Advance(std::size_t kept) {
  if (IsLast()) return false;
  length_ -= kept;
  base_ += kept;
  std::memmove(buffer_.get(), buffer_.get() + kept, length_);
  // What is kept is read again, so that a long stretch must double to be read in linear time.
  Fill(std::max<std::uint64_t>(sizes_.step, std::uint64_t{2} * length_));
  return status_ == Reading::kDone;
}

std::size_t TextWindow::Find(std::string_view marker, std::size_t from) {
  std::size_t found = View().find(marker, from);
  while (found == kNone && Advance(0)) found = View().find(marker, from);
  return found;
}

void TextWindow::Fill(std::uint64_t bytes) {
  bytes = std::min(bytes, length_ + (size_ - next_));
  if (bytes > sizes_.most) return Fail(Reading::kTooLarge);
  if (!MakeRoom(bytes)) return Fail(Reading::kUnreadable);
  while (length_ < bytes && !IsLast()) Load(static_cast<std::size_t>(bytes) - length_);
  std::memset(buffer_.get() + length_, 0, kSlack);
}

bool TextWindow::MakeRoom(std::uint64_t bytes) {
  if (bytes > std::numeric_limits<std::ptrdiff_t>::max() - kSlack) return false;
  const std::size_t wanted = static_cast<std::size_t>(bytes) + kSlack;
  if (wanted <= capacity_) return true;
  void* const room = std::realloc(buffer_.get(), wanted);
  if (room == nullptr) return false;
  static_cast<void>(buffer_.release());
  buffer_.reset(static_cast<char*>(room));
  capacity_ = wanted;
  return true;
}

void TextWindow::Load(std::size_t bytes) {
  if (call::IsCancelled()) return Fail(Reading::kCancelled);
  const std::uint64_t chunk_end = next_ - next_ % kChunkBytes + kChunkBytes;
  const std::uint64_t limit = std::min(chunk_end, size_) - next_;
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, limit));
  char* const place = buffer_.get() + length_;
  const std::optional<std::size_t> got = source_->Read(next_, place, wanted);
  if (!got) return Fail(Reading::kUnreadable);
  next_ += *got;
  if (*got < wanted) size_ = next_;  // the file has become shorter
  const void* const nul = std::memchr(place, 0, *got);
  length_ +=
      nul != nullptr ? static_cast<std::size_t>(static_cast<const char*>(nul) - place) : *got;
  if (nul == nullptr) return;
  met_nul_ = true;
  next_ = std::min(chunk_end, size_);
}

void TextWindow::Fail(Reading reading) {
  status_ = reading;
  size_ = next_;
}

TextWindow& KeptTextWindow() { return platform::OfThisThread<TextWindow>(); }

std::size_t PieceBytes() {
  const std::size_t set = set_piece_bytes.load(std::memory_order_relaxed);
  return set != 0 ? set : kUsualPieceBytes;
}

void SetPieceBytes(std::size_t bytes) { set_piece_bytes.store(bytes, std::memory_order_relaxed); }

}  // namespace qv
