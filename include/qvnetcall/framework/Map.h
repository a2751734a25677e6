#pragma once

#include <unordered_map>

#include "qvnetcall/framework/InvalidArgException.h"

/// A position in the iteration over a map; null is its end.
using POSITION = const void*;

/// A hash map that owns its keys and values; the ARG types are those in which they are passed to
/// its functions. KEY needs std::hash and ==. One thread at a time may change a map.
template <typename KEY, typename ARG_KEY, typename VALUE, typename ARG_VALUE>
class CMap {
 public:
  /// Both return the number of keys.
  [[nodiscard]] int GetCount() const noexcept { return static_cast<int>(items_.size()); }
  [[nodiscard]] int GetSize() const noexcept { return GetCount(); }
  [[nodiscard]] bool IsEmpty() const noexcept { return items_.empty(); }

  /// Copies the value of `key` to `value` and returns true. If there is no such key, leaves `value`
  /// unchanged and returns false.
  bool Lookup(ARG_KEY key, VALUE& value) const {
    const auto found = items_.find(static_cast<KEY>(key));
    if (found == items_.end()) return false;
    value = found->second;
    return true;
  }
  /// Adds the key, or replaces its value if it is there.
  void SetAt(ARG_KEY key, ARG_VALUE value) { (*this)[key] = value; }
  /// Returns the value of `key`. A key that is not there is added first, with an empty value.
  VALUE& operator[](ARG_KEY key) { return items_[static_cast<KEY>(key)]; }
  /// Removes a key. Returns whether it was there.
  bool RemoveKey(ARG_KEY key) { return items_.erase(static_cast<KEY>(key)) != 0; }
  void RemoveAll() noexcept { items_.clear(); }

  /// Starts an iteration, in no particular order. Returns the first position, or null if the map is
  /// empty. A position is valid until the map changes.
  [[nodiscard]] POSITION GetStartPosition() const noexcept { return PositionOf(items_.begin()); }
  /// Copies the key and the value at `position` and moves it to the next pair, or to null after the
  /// last one. Throws CInvalidArgException if `position` is null.
  void GetNextAssoc(POSITION& position, KEY& key, VALUE& value) const {
    if (position == nullptr) AfxThrowInvalidArgException();
    const auto& pair = *static_cast<const typename Items::value_type*>(position);
    auto next = items_.find(pair.first);
    key = pair.first;
    value = pair.second;
    position = PositionOf(++next);
  }

 private:
  using Items = std::unordered_map<KEY, VALUE>;

  POSITION PositionOf(typename Items::const_iterator place) const noexcept {
    return place == items_.end() ? nullptr : &*place;
  }

  Items items_;
};
