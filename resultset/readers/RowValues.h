// The values of some rows, by the names of a result set's columns.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "resultset/ByteScan.h"
#include "resultset/ResultTable.h"

namespace qv {

// Holds a few rows, so that they can be converted column by column while they are in the caches.
//
// A row either has no value for a name or one that may be empty. Rows usually name their values in
// the order of the columns, with gaps: the expected name and a few after it are compared before any
// look-up.
class RowValues {
 public:
  // `closing` is the character after a name in this dialect.
  RowValues(std::span<const Column> columns, char closing);

  // The most rows that are held at once; fewer if there are many names.
  static constexpr std::size_t kMostRows = 64;

  // Drops all rows.
  void Clear();
  [[nodiscard]] bool IsFull() const { return rows_ == room_; }
  [[nodiscard]] std::size_t Rows() const { return rows_; }

  // Starts another row, without values. There must be room.
  void Begin();
  // Drops the row that was started last.
  void TakeBack();
  // Says that texts of the row may have entities.
  void NoteEntities() { with_entities_ |= std::uint64_t{1} << (rows_ - 1); }

  // Records the value of a name; the first of several with the same name counts.
  void Put(std::string_view name, std::string_view value);

  // Compares the name at `p` and its closing character with the expected names. At least sixteen
  // bytes from `p` on must be readable. Returns the length of the name, whose value PutExpected
  // then records, or 0 if none matches.
  [[nodiscard]] std::size_t MatchExpected(const char* p, const char* end);
  void PutExpected(std::string_view value) {
    if (row_[expected_].data() == nullptr) row_[expected_] = value;
    ++expected_;
  }

  // Records that the row has the name, with an empty value. Any other value of the name counts,
  // also one that follows. `at` is the value's place.
  void PutEmpty(std::string_view name, const char* at);
  void PutExpectedEmpty(const char* at) {
    empty_values_[expected_++] = at;
    has_empty_ = true;
  }
  // Ends a row in which PutEmpty was used.
  void End();

  // Rows that were recorded, as a column sees them.
  class InColumn {
   public:
    [[nodiscard]] std::size_t Rows() const { return rows_; }
    // Returns the value in a row; empty if it has none, and then without a place.
    [[nodiscard]] const std::string_view& operator[](std::size_t row) const {
      return first_[row * stride_];
    }
    [[nodiscard]] bool MayHaveEntities(std::size_t row) const {
      return (with_entities_ >> row & 1) != 0;
    }
    [[nodiscard]] InColumn OneRow(std::size_t row) const {
      return {first_ + row * stride_, stride_, 1, with_entities_ >> row};
    }

   private:
    friend RowValues;
    InColumn(const std::string_view* first, std::size_t stride, std::size_t rows,
             std::uint64_t with_entities)
        : first_(first), stride_(stride), rows_(rows), with_entities_(with_entities) {}

    const std::string_view* first_;
    std::size_t stride_;
    std::size_t rows_;
    std::uint64_t with_entities_;
  };

  // The slot of a column's values, and the values in it.
  [[nodiscard]] std::size_t SlotOf(std::size_t column) const { return slots_[column]; }
  [[nodiscard]] InColumn InSlot(std::size_t slot) const {
    return {values_.data() + slot, empty_values_.size(), rows_, with_entities_};
  }

  // Returns true if the last recorded name is at `p` too, with its closing character.
  [[nodiscard]] bool IsLastExpected(const char* p, const char* end) const {
    return names_[expected_ - 1].Matches(p, end);
  }

  // Returns true if any name starts with `prefix`.
  [[nodiscard]] bool HasNameWith(std::string_view prefix) const;

 private:
  // A name and its closing character, prepared for comparing eight bytes at a time. At least
  // sixteen bytes from `p` on must be readable.
  struct Name {
    [[nodiscard]] bool Matches(const char* p, const char* end) const {
      if ((LoadWord(p) & head_mask) != head || (LoadWord(p + 8) & next_mask) != next) return false;
      if (static_cast<std::size_t>(end - p) < length) return false;
      return length <= 16 || std::memcmp(p, text, length) == 0;
    }

    std::uint64_t head;
    std::uint64_t head_mask;
    std::uint64_t next;
    std::uint64_t next_mask;
    std::size_t length;
    const char* text;
  };

  static Name MakeName(std::string_view closed);

  static constexpr std::size_t kLookAhead = 8;

  std::vector<std::size_t> slots_;        // by column; columns of one name share a slot
  std::deque<std::string> closed_names_;  // the texts that names_ points to
  // By slot; after the last follow as many entries as are checked ahead, which match nothing.
  std::vector<Name> names_;
  std::map<std::string_view, std::size_t> slot_of_name_;  // ordered, so that no names collide
  std::vector<std::string_view> values_;                  // by row and slot
  std::vector<const char*> empty_values_;                 // by slot; null if there is none
  bool has_empty_ = false;
  std::size_t room_;
  std::size_t rows_ = 0;
  std::uint64_t with_entities_ = 0;  // a bit for each row
  std::string_view* row_ = nullptr;  // the values of the last row
  std::size_t expected_ = 0;
};

inline std::size_t RowValues::MatchExpected(const char* p, const char* end) {
  const Name* const first = names_.data() + expected_;
  for (const Name* name = first; name != first + kLookAhead; ++name) {
    if (!name->Matches(p, end)) continue;
    expected_ += static_cast<std::size_t>(name - first);
    return name->length - 1;
  }
  return 0;
}

}  // namespace qv
