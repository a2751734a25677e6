// The values of one row, by the names of a result set's columns.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ByteScan.h"
#include "Column.h"

namespace qv {

// Rows name their values in the columns' order, most of the time and with gaps: the name that is
// expected next, and a few behind it, are compared before anything is looked up.
class RowValues {
 public:
  // `closing` is what stands behind a name in this dialect.
  RowValues(const std::vector<Column>& columns, char closing);

  // Starts a row without values.
  void Begin();

  // Records the value of a name; of several values of one name the first counts.
  void Put(std::string_view name, std::string_view value);

  // Compares the name at `p`, and the closing character behind it, with what is expected next. At
  // least eight bytes from `p` on can be read. The length of the name, or 0 when it is none of
  // those; PutExpected then records its value.
  [[nodiscard]] std::size_t MatchExpected(const char* p, const char* end);
  void PutExpected(std::string_view value) {
    if (values_[expected_].data() == nullptr) values_[expected_] = value;
    ++expected_;
  }

  // The value for a column; empty when the row has none.
  [[nodiscard]] std::string_view For(std::size_t column) const { return values_[slots_[column]]; }

  // Whether a column's name starts like the name of a closing tag.
  [[nodiscard]] bool HasClosingTagNames() const { return has_closing_tag_names_; }

 private:
  // A name and its closing character, ready to be compared eight bytes at a time.
  struct Name {
    std::uint64_t head;
    std::uint64_t head_mask;
    std::string closed;
  };

  static Name MakeName(std::string_view text, char closing);

  std::vector<std::size_t> slots_;  // by column; columns of one name share a slot
  std::vector<Name> names_;         // by slot
  std::unordered_map<std::string_view, std::size_t> slot_of_name_;
  std::vector<std::string_view> values_;  // by slot
  std::size_t expected_ = 0;
  bool has_closing_tag_names_ = false;
};

inline std::size_t RowValues::MatchExpected(const char* p, const char* end) {
  constexpr std::size_t kLookAhead = 8;
  const std::uint64_t word = LoadWord(p);
  const std::size_t stop = std::min(names_.size(), expected_ + kLookAhead);
  for (std::size_t slot = expected_; slot < stop; ++slot) {
    const Name& name = names_[slot];
    if ((word & name.head_mask) != name.head) continue;
    const std::size_t length = name.closed.size();
    if (static_cast<std::size_t>(end - p) < length) continue;
    if (length > sizeof word && std::memcmp(p, name.closed.data(), length) != 0) continue;
    expected_ = slot;
    return length - 1;
  }
  return 0;
}

}  // namespace qv
