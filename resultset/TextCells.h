// The texts of a column's cells, all in one buffer.
#pragma once

#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

#include "GrowArray.h"

namespace qv {

// A column holds up to 4 GiB; more is treated as out of memory.
class TextCells {
 public:
  static constexpr std::size_t kCellBytes = sizeof(std::uint32_t);

  std::size_t size() const { return ends_.size(); }

  std::size_t Bytes() const { return bytes_.Bytes() + ends_.Bytes(); }
  void ReserveTimes(double factor) {
    bytes_.ReserveTimes(factor);
    ends_.ReserveTimes(factor);
  }

  // Returns the text of a cell, valid until the next change.
  std::string_view operator[](std::size_t row) const {
    const std::size_t start = row == 0 ? 0 : ends_[row - 1];
    return {bytes_.data() + start, ends_[row] - start};
  }

  void push_back(std::string_view text) {
    if (!text.empty()) std::memcpy(bytes_.Extend(text.size()), text.data(), text.size());
    End();
  }

  // Like push_back, for a text followed by at least kCopyStep readable bytes: short texts are
  // copied in whole steps, without a call.
  static constexpr std::size_t kCopyStep = 32;
  void AppendFromBuffer(std::string_view text) {
    if (text.empty() || text.size() > 2 * kCopyStep) return push_back(text);
    char* const to = Begin(2 * kCopyStep);
    std::memcpy(to, text.data(), kCopyStep);
    if (text.size() > kCopyStep) std::memcpy(to + kCopyStep, text.data() + kCopyStep, kCopyStep);
    Finish(text.size());
  }

  // For a text that is built in place: returns room for `capacity` bytes, of which Finish keeps the
  // first `length`.
  char* Begin(std::size_t capacity) {
    building_ = bytes_.size();
    return bytes_.Extend(capacity);
  }
  void Finish(std::size_t length) {
    bytes_.Shrink(building_ + length);
    End();
  }

 private:
  void End() {
    if (bytes_.size() > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    ends_.push_back(static_cast<std::uint32_t>(bytes_.size()));
  }

  GrowArray<char> bytes_;
  GrowArray<std::uint32_t> ends_;
  std::size_t building_ = 0;
};

}  // namespace qv
