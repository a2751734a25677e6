#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "qvnetcall/framework/InvalidArgException.h"

/// A growing array that owns its elements, which are of TYPE; ARG_TYPE is the type in which they
/// are passed to its functions. Indexes start at 0. New elements are value-initialised (0, empty).
/// An index outside the array, a negative size or count, or more elements than the largest int make
/// a function throw CInvalidArgException. One thread at a time may change an array. References to
/// elements, and what GetData() returns, are valid until the array changes. TYPE must not be bool.
template <typename TYPE, typename ARG_TYPE = const TYPE&>
class CArray {
 public:
  /// Both return the number of elements.
  [[nodiscard]] int GetSize() const noexcept { return static_cast<int>(items_.size()); }
  [[nodiscard]] int GetCount() const noexcept { return GetSize(); }
  /// Returns the index of the last element, or -1 if the array is empty.
  [[nodiscard]] int GetUpperBound() const noexcept { return GetSize() - 1; }
  [[nodiscard]] bool IsEmpty() const noexcept { return items_.empty(); }

  /// Removes elements from the end, or appends new ones, until there are `size`. `grow_by` has no
  /// effect; it is there for hosts that pass it.
  void SetSize(int size, int grow_by = -1) {
    static_cast<void>(grow_by);
    items_.resize(Checked(size >= 0, size));
  }
  /// Allocates room for `size` elements in advance.
  void Reserve(int size) { items_.reserve(Checked(size >= 0, size)); }
  void RemoveAll() noexcept { items_.clear(); }
  /// Releases the memory that no element uses.
  void FreeExtra() { items_.shrink_to_fit(); }

  /// All of these return the element at `index`.
  [[nodiscard]] const TYPE& GetAt(int index) const { return items_[Existing(index)]; }
  [[nodiscard]] TYPE& GetAt(int index) { return items_[Existing(index)]; }
  [[nodiscard]] TYPE& ElementAt(int index) { return items_[Existing(index)]; }
  [[nodiscard]] const TYPE& operator[](int index) const { return items_[Existing(index)]; }
  [[nodiscard]] TYPE& operator[](int index) { return items_[Existing(index)]; }
  /// Returns the elements, one after the other in memory; may return null if the array is empty.
  [[nodiscard]] const TYPE* GetData() const noexcept { return items_.data(); }
  [[nodiscard]] TYPE* GetData() noexcept { return items_.data(); }

  /// Replaces the element at `index`.
  void SetAt(int index, ARG_TYPE element) { items_[Existing(index)] = element; }
  /// Replaces the element at `index`. If the array has no such element yet, it first grows until
  /// it has.
  void SetAtGrow(int index, ARG_TYPE element) {
    if (index < GetSize()) return SetAt(index, element);
    InsertAt(index, element);
  }
  /// Appends an element. Returns its index.
  int Add(ARG_TYPE element) {
    CheckRoom(items_.size(), 1);
    items_.push_back(static_cast<TYPE>(element));
    return GetUpperBound();
  }
  /// Inserts `count` copies of an element, which may be one of this array, before `index`. If the
  /// index is above the size, the array first grows up to it.
  void InsertAt(int index, ARG_TYPE element, int count = 1) {
    const std::size_t at = Checked(index >= 0, index);
    const std::size_t copies = Checked(count >= 0, count);
    CheckRoom(at < items_.size() ? items_.size() : at, copies);
    const TYPE copy = element;  // it may be an element of this very array
    if (at > items_.size()) items_.resize(at);
    items_.insert(items_.begin() + index, copies, copy);
  }
  /// Removes `count` elements from `index` on.
  void RemoveAt(int index, int count = 1) {
    const bool inside =
        index >= 0 && count >= 0 && index <= GetSize() && count <= GetSize() - index;
    const auto first = items_.begin() + static_cast<std::ptrdiff_t>(Checked(inside, index));
    items_.erase(first, first + count);
  }

  /// Appends the elements of `other`, which may be this array. Returns the index of the first new
  /// element.
  int Append(const CArray& other) {
    CheckRoom(items_.size(), other.items_.size());
    const int first = GetSize();
    const std::size_t count = other.items_.size();  // `other` may be this array
    items_.reserve(items_.size() + count);
    for (std::size_t i = 0; i < count; ++i) items_.push_back(other.items_[i]);
    return first;
  }
  /// Replaces all elements by those of `other`.
  void Copy(const CArray& other) { items_ = other.items_; }

 private:
  static std::size_t Checked(bool good, int value) {
    if (!good) AfxThrowInvalidArgException();
    return static_cast<std::size_t>(value);
  }
  static void CheckRoom(std::size_t size, std::size_t more) {
    constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<int>::max());
    if (size >= kMost + 1 || more > kMost - size) AfxThrowInvalidArgException();
  }
  std::size_t Existing(int index) const { return Checked(index >= 0 && index < GetSize(), index); }

  std::vector<TYPE> items_;
};
