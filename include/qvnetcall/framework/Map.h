#pragma once

#include <unordered_map>

#include "qvnetcall/framework/InvalidArgException.h"

/// A place in a map's iteration; null is the end.
using POSITION = const void*;

/// A hash map that owns its keys and values; the ARG types are how these are passed in. KEY needs
/// std::hash and ==. One thread at a time may change a map.
template <typename KEY, typename ARG_KEY, typename VALUE, typename ARG_VALUE>
class CMap {
 public:
  [[nodiscard]] int GetCount() const noexcept { return static_cast<int>(items_.size()); }
  [[nodiscard]] int GetSize() const noexcept { return GetCount(); }
  [[nodiscard]] bool IsEmpty() const noexcept { return items_.empty(); }

  /// Copies the value of `key` into `value` and gives true, or leaves `value` as it is and gives
  /// false.
  bool Lookup(ARG_KEY key, VALUE& value) const {
    const auto found = items_.find(static_cast<KEY>(key));
    if (found == items_.end()) return false;
    value = found->second;
    return true;
  }
  /// Adds the key or replaces its value.
  void SetAt(ARG_KEY key, ARG_VALUE value) { (*this)[key] = value; }
  /// The value of `key`, which is added with an empty value when it is not there.
  VALUE& operator[](ARG_KEY key) { return items_[static_cast<KEY>(key)]; }
  /// Whether there was such a key.
  bool RemoveKey(ARG_KEY key) { return items_.erase(static_cast<KEY>(key)) != 0; }
  void RemoveAll() noexcept { items_.clear(); }

  /// Iteration in no particular order; a change of the map ends it.
  [[nodiscard]] POSITION GetStartPosition() const noexcept { return PositionOf(items_.begin()); }
  /// Copies the pair at `position` and moves on (null behind the last). Throws CInvalidArgException
  /// for null.
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
