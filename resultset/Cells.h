// The cells of a column, in growing arrays; and which of them are null.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

#include "base/platform/Platform.h"
#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv {

// Unlike std::vector, it grows by std::realloc, which moves large blocks without copying them, and
// does not initialise what is about to be written.
template <class T>
class GrowArray {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  static constexpr std::size_t kCellBytes = sizeof(T);

  GrowArray() = default;
  GrowArray(GrowArray&& other) noexcept
      : data_(std::move(other.data_)),
        size_(std::exchange(other.size_, 0)),
        capacity_(std::exchange(other.capacity_, 0)) {}
  GrowArray& operator=(GrowArray&& other) noexcept {
    data_ = std::move(other.data_);
    size_ = std::exchange(other.size_, 0);
    capacity_ = std::exchange(other.capacity_, 0);
    return *this;
  }

  std::size_t size() const { return size_; }
  T* data() { return data_.get(); }
  const T* data() const { return data_.get(); }
  T& operator[](std::size_t index) { return data_.get()[index]; }
  const T& operator[](std::size_t index) const { return data_.get()[index]; }

  void push_back(const T& value) {
    const T copy = value;
    *Extend(1) = copy;
  }

  // Makes room for `count` more values and returns their place; they are not initialised.
  T* Extend(std::size_t count) {
    if (capacity_ - size_ < count) Grow(count);
    T* const room = data_.get() + size_;
    size_ += count;
    return room;
  }

  void Append(const GrowArray& others) {
    if (others.size_ != 0) std::memcpy(Extend(others.size_), others.data(), others.Bytes());
  }

  // The memory that the values take, and capacity for `factor` > 1 times as many of them.
  std::size_t Bytes() const { return size_ * sizeof(T); }
  void ReserveTimes(double factor) {
    const auto wanted = static_cast<std::size_t>(static_cast<double>(size_) * factor);
    if (wanted > capacity_) Grow(wanted - size_);
  }

  // Drops all but the first `size` values.
  void Shrink(std::size_t size) { size_ = size; }

 private:
  struct Freed {
    void operator()(T* data) const { std::free(data); }
  };

  static constexpr std::size_t kLargeBytes = std::size_t{4} << 20;
  static constexpr std::size_t kFirstCapacity = 64 / sizeof(T) + 1;

  void Grow(std::size_t count) {
    constexpr std::size_t kMax = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
    if (count > kMax - size_) throw std::bad_alloc();
    const std::size_t doubled = capacity_ > kMax / 2 ? kMax : capacity_ * 2;
    const std::size_t wanted = std::max({size_ + count, doubled, kFirstCapacity});
    void* const grown = std::realloc(data_.get(), wanted * sizeof(T));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(data_.release());
    data_.reset(static_cast<T*>(grown));
    capacity_ = wanted;
    // Filling a large block costs less than having its pages faulted in one by one.
    const std::size_t bytes = wanted * sizeof(T);
    if (bytes >= kLargeBytes) platform::PreferLargePages(grown, bytes);
  }

  std::unique_ptr<T, Freed> data_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

// Integers. The calls that the platform knows give them within 32 bits.
class IntCells : public GrowArray<std::int64_t> {
 public:
  [[nodiscard]] std::int32_t In32Bits(std::size_t row) const {
    const auto sum = sums_.empty() ? sums_.end() : sums_.find(row);
    return sum != sums_.end() ? sum->second : text::SaturatedTo32Bits((*this)[row]);
  }

  // Replaces a cell by a sum that is `in_32_bits` to those calls, which add 32-bit numbers and let
  // the sum wrap.
  void SetSum(std::size_t row, std::int64_t sum, std::int32_t in_32_bits) {
    sums_[row] = in_32_bits;
    (*this)[row] = sum;
  }

 private:
  std::map<std::size_t, std::int32_t> sums_;  // as those calls give them, by row
};

// The rows of a column that have no value: a bit each, and no memory after the last of them.
class NullRows {
 public:
  [[nodiscard]] bool Has(std::size_t row) const {
    return row / kBits < words_.size() && (words_[row / kBits] >> row % kBits & 1) != 0;
  }
  void Add(std::size_t row) { AddBits(row / kBits, std::uint64_t{1} << row % kBits); }
  // Adds the rows whose bits are set, counted from `first` on, the lowest bit first.
  void AddRows(std::size_t first, std::uint64_t bits) {
    const std::size_t shift = first % kBits;
    AddBits(first / kBits, bits << shift);
    if (shift != 0) AddBits(first / kBits + 1, bits >> (kBits - shift));
  }
  void Remove(std::size_t row) {
    if (row / kBits < words_.size()) words_[row / kBits] &= ~(std::uint64_t{1} << row % kBits);
  }
  void Clear() { words_.Shrink(0); }
  // Adds `others`, counted from `first` on.
  void Append(const NullRows& others, std::size_t first) {
    for (std::size_t i = 0; i < others.words_.size(); ++i) {
      AddRows(first + i * kBits, others.words_[i]);
    }
  }

 private:
  static constexpr std::size_t kBits = 64;

  void AddBits(std::size_t word, std::uint64_t bits) {
    if (bits == 0) return;
    if (word >= words_.size()) AddWords(word + 1 - words_.size());
    words_[word] |= bits;
  }
  void AddWords(std::size_t count) {
    std::memset(words_.Extend(count), 0, count * sizeof(std::uint64_t));
  }

  GrowArray<std::uint64_t> words_;
};

// The texts of a column's cells, all in one buffer.
// A column holds up to 4 GiB; more is treated as out of memory.
class TextCells {
 public:
  static constexpr std::size_t kCellBytes = sizeof(std::uint32_t);

  // Whether the calls that the platform knows give the texts without the white space at both ends,
  // as they do for what servers and databases send.
  enum class PlatformsForm { kAsItIs, kTrimmed };

  explicit TextCells(PlatformsForm form = PlatformsForm::kAsItIs) : form_(form) {}

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
  // Returns it as the calls that the platform knows give it.
  [[nodiscard]] std::string_view InPlatformsForm(std::size_t row) const {
    return form_ == PlatformsForm::kTrimmed ? text::Trimmed((*this)[row]) : (*this)[row];
  }

  void push_back(std::string_view text) {
    if (!text.empty()) std::memcpy(bytes_.Extend(text.size()), text.data(), text.size());
    if (bytes_.size() > kMostBytes) throw std::bad_alloc();
    ends_.push_back(static_cast<std::uint32_t>(bytes_.size()));
  }

  void Append(const TextCells& others) {
    const std::size_t start = bytes_.size();
    bytes_.Append(others.bytes_);
    if (bytes_.size() > kMostBytes) throw std::bad_alloc();
    const std::size_t count = others.size();
    std::uint32_t* const ends = ends_.Extend(count);
    for (std::size_t i = 0; i < count; ++i) {
      ends[i] = static_cast<std::uint32_t>(start + others.ends_[i]);
    }
  }
  // Appends `count` texts of together at most `most_bytes`: `put` writes the text of a row to a
  // place and returns its length. It may write up to kCopyStep bytes after the text.
  static constexpr std::size_t kCopyStep = 64;
  template <class Put>
  void AppendEach(std::size_t count, std::size_t most_bytes, const Put& put) {
    const std::size_t start = bytes_.size();
    char* const first = bytes_.Extend(most_bytes + kCopyStep);
    std::uint32_t* const ends = ends_.Extend(count);
    std::size_t length = 0;
    for (std::size_t row = 0; row < count; ++row) {
      length += put(row, first + length);
      ends[row] = static_cast<std::uint32_t>(start + length);
    }
    bytes_.Shrink(start + length);
    if (bytes_.size() <= kMostBytes) return;
    Shrink(size() - count);
    throw std::bad_alloc();
  }
  // Drops all but the first `size` texts.
  void Shrink(std::size_t size) {
    ends_.Shrink(size);
    bytes_.Shrink(size == 0 ? 0 : ends_[size - 1]);
  }

 private:
  static constexpr std::size_t kMostBytes = std::numeric_limits<std::uint32_t>::max();

  GrowArray<char> bytes_;
  GrowArray<std::uint32_t> ends_;
  PlatformsForm form_;
};

}  // namespace qv
