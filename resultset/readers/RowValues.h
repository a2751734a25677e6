// The values of one row, by the names of a result set's columns.
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

// A row either has no value for a name or one that may be empty. Rows usually name their values in
// the order of the columns, with gaps: the expected name and a few after it are compared before any
// look-up.
class RowValues {
 public:
  // `closing` is the character after a name in this dialect.
  RowValues(std::span<const Column> columns, char closing);

  // Starts a row without values.
  void Begin();

  // Records the value of a name; the first of several with the same name counts.
  void Put(std::string_view name, std::string_view value);

  // Compares the name at `p` and its closing character with the expected names. At least sixteen
  // bytes from `p` on must be readable. Returns the length of the name, whose value PutExpected
  // then records, or 0 if none matches.
  [[nodiscard]] std::size_t MatchExpected(const char* p, const char* end);
  void PutExpected(std::string_view value) {
    if (values_[expected_].data() == nullptr) values_[expected_] = value;
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

  // The slot of a column's values, and the value in it; empty if the row has none, and then without
  // a place.
  [[nodiscard]] std::size_t SlotOf(std::size_t column) const { return slots_[column]; }
  [[nodiscard]] std::string_view InSlot(std::size_t slot) const { return values_[slot]; }

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
  std::vector<std::string_view> values_;                  // by slot
  std::vector<const char*> empty_values_;                 // by slot; null if there is none
  bool has_empty_ = false;
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
