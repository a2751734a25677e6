// The texts of a column's cells, all in one buffer.
#pragma once

#include <cstring>
#include <string_view>

#include "GrowArray.h"

namespace qv {

class TextCells {
 public:
  std::size_t size() const { return ends_.size(); }

  // The text of a cell; good until the next change.
  std::string_view operator[](std::size_t row) const {
    const std::size_t start = row == 0 ? 0 : ends_[row - 1];
    return {bytes_.data() + start, ends_[row] - start};
  }

  void push_back(std::string_view text) {
    if (!text.empty()) std::memcpy(bytes_.Extend(text.size()), text.data(), text.size());
    ends_.push_back(bytes_.size());
  }

  // For a text that is built in place: room for `capacity` bytes, of which Finish keeps the first
  // `length`.
  char* Begin(std::size_t capacity) {
    building_ = bytes_.size();
    return bytes_.Extend(capacity);
  }
  void Finish(std::size_t length) {
    bytes_.Shrink(building_ + length);
    ends_.push_back(bytes_.size());
  }

 private:
  GrowArray<char> bytes_;
  GrowArray<std::size_t> ends_;
  std::size_t building_ = 0;
};

}  // namespace qv
