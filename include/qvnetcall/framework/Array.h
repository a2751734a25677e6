#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "qvnetcall/framework/InvalidArgException.h"

/// A growing array of TYPE, which owns its elements; ARG_TYPE is how an element is passed in.
/// Indexes are 0-based. New elements are value-initialised (0, empty). An index outside the array,
/// a negative size or count, and more elements than the largest int throw CInvalidArgException. One
/// thread at a time may change an array; references and GetData() are valid until it changes. Not
/// for TYPE bool.
template <typename TYPE, typename ARG_TYPE = const TYPE&>
class CArray {
 public:
  [[nodiscard]] int GetSize() const noexcept { return static_cast<int>(items_.size()); }
  [[nodiscard]] int GetCount() const noexcept { return GetSize(); }
  [[nodiscard]] int GetUpperBound() const noexcept { return GetSize() - 1; }
  [[nodiscard]] bool IsEmpty() const noexcept { return items_.empty(); }

  /// Cuts the array or appends new elements; `grow_by` is accepted for hosts that pass one and has
  /// no effect.
  void SetSize(int size, int grow_by = -1) {
    static_cast<void>(grow_by);
    items_.resize(Checked(size >= 0, size));
  }
  /// Room for `size` elements without a further allocation.
  void Reserve(int size) { items_.reserve(Checked(size >= 0, size)); }
  void RemoveAll() noexcept { items_.clear(); }
  void FreeExtra() { items_.shrink_to_fit(); }

  [[nodiscard]] const TYPE& GetAt(int index) const { return items_[Existing(index)]; }
  [[nodiscard]] TYPE& GetAt(int index) { return items_[Existing(index)]; }
  [[nodiscard]] TYPE& ElementAt(int index) { return items_[Existing(index)]; }
  [[nodiscard]] const TYPE& operator[](int index) const { return items_[Existing(index)]; }
  [[nodiscard]] TYPE& operator[](int index) { return items_[Existing(index)]; }
  [[nodiscard]] const TYPE* GetData() const noexcept { return items_.data(); }
  [[nodiscard]] TYPE* GetData() noexcept { return items_.data(); }

  void SetAt(int index, ARG_TYPE element) { items_[Existing(index)] = element; }
  /// As SetAt; an index behind the end first grows the array up to it.
  void SetAtGrow(int index, ARG_TYPE element) {
    if (index < GetSize()) return SetAt(index, element);
    InsertAt(index, element);
  }
  /// Appends and returns the new element's index.
  int Add(ARG_TYPE element) {
    CheckRoom(items_.size(), 1);
    items_.push_back(static_cast<TYPE>(element));
    return GetUpperBound();
  }
  /// Inserts `count` copies before `index`; an index behind the end first grows the array up to it.
  void InsertAt(int index, ARG_TYPE element, int count = 1) {
    const std::size_t at = Checked(index >= 0, index);
    const std::size_t copies = Checked(count >= 0, count);
    CheckRoom(at < items_.size() ? items_.size() : at, copies);
    const TYPE copy = element;  // it may be an element of this very array
    if (at > items_.size()) items_.resize(at);
    items_.insert(items_.begin() + index, copies, copy);
  }
  void RemoveAt(int index, int count = 1) {
    const bool inside =
        index >= 0 && count >= 0 && index <= GetSize() && count <= GetSize() - index;
    const auto first = items_.begin() + static_cast<std::ptrdiff_t>(Checked(inside, index));
    items_.erase(first, first + count);
  }

  /// Appends all of `other`; returns the index of the first new element.
  int Append(const CArray& other) {
    CheckRoom(items_.size(), other.items_.size());
    const int first = GetSize();
    const std::size_t count = other.items_.size();  // `other` may be this array
    items_.reserve(items_.size() + count);
    for (std::size_t i = 0; i < count; ++i) items_.push_back(other.items_[i]);
    return first;
  }
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
