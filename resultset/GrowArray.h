// A growing array of plain values, for cells.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "base/platform/Platform.h"

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

}  // namespace qv
