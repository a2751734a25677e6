// What finds the rows of a text and the values in them.
#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <string_view>

#include "ColumnFiller.h"
#include "RowValues.h"
#include "base/call/CancelFlag.h"
#include "resultset/Reading.h"

namespace qv {

// Reads the rows of a text in one of the dialects. What it reads from a row's start on does not
// depend on the rows before. Positions are offsets into the text; they must not decrease from call
// to call.
class RowScanner {
 public:
  static constexpr std::size_t kNone = std::string_view::npos;

  // `closing` is the character after a name in this dialect.
  RowScanner(std::string_view text, std::span<const Column> columns, char closing)
      : values_(columns, closing), text_(text) {}
  virtual ~RowScanner() = default;
  RowScanner(const RowScanner&) = delete;
  RowScanner& operator=(const RowScanner&) = delete;

  // Returns the first place at or after `from` that looks like the start of a row, or kNone. After
  // the end of a row, that is the next row.
  [[nodiscard]] virtual std::size_t FindRow(std::size_t from) const = 0;

  // Appends to `filler` the rows from the one at `position` on, until one starts at `limit` or
  // after it. `position` becomes the start of that row, or kNone if there is none.
  [[nodiscard]] virtual Reading ReadRows(std::size_t& position, std::size_t limit,
                                         ColumnFiller& filler) = 0;

  [[nodiscard]] std::string_view Text() const { return text_; }
  // The values of the rows that were read last.
  [[nodiscard]] const RowValues& Values() const { return values_; }

 protected:
  // What ReadRow of a dialect, which ReadEachRow calls, returns: it records the values of a row,
  // moves `position`, its start, to its end, and says whether it may have entities; or kNoRow if
  // the rows end before it.
  enum class Row { kPlain, kWithEntities, kNoRow };

  // The body of ReadRows, compiled for each dialect: `rows` has a ReadRow as above.
  template <class Rows>
  [[nodiscard]] static Reading ReadEachRow(Rows& rows, std::size_t& position, std::size_t limit,
                                           ColumnFiller& filler) {
    while (position < limit) {
      rows.values_.Clear();
      while (position < limit && !rows.values_.IsFull()) ReadOneRow(rows, position);
      if (!filler.AppendRows()) return Reading::kTooLarge;
      if (position != kNone && filler.CanReserve()) {
        filler.ReserveAfter(position, rows.Text().size());
      }
      if (call::IsCancelled()) return Reading::kCancelled;
    }
    return Reading::kDone;
  }

  RowValues values_;

 private:
  template <class Rows>
  static void ReadOneRow(Rows& rows, std::size_t& position) {
    rows.values_.Begin();
    const Row row = rows.ReadRow(position);
    if (row == Row::kWithEntities) rows.values_.NoteEntities();
    if (row == Row::kNoRow) rows.values_.TakeBack();
    position = row != Row::kNoRow ? rows.FindRow(position) : kNone;
  }

  const std::string_view text_;
};

}  // namespace qv
