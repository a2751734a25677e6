// What finds the rows of a text and the values in them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

#include "ColumnFiller.h"
#include "RowValues.h"
#include "TextWindow.h"
#include "base/call/CancelFlag.h"
#include "resultset/Reading.h"

namespace qv {

// Reads the rows of a text in one of the dialects. What it reads from a row's start on does not
// depend on the rows before. Positions are offsets into the source of the text, indexes are
// offsets into the window's view.
class RowScanner {
 public:
  // The position after all rows.
  static constexpr std::uint64_t kEnd = std::numeric_limits<std::uint64_t>::max();

  // `closing` is the character after a name in this dialect. The window outlives the scanner.
  RowScanner(TextWindow& window, std::span<const Column> columns, char closing)
      : values_(columns, closing), window_(window) {}
  virtual ~RowScanner() = default;
  RowScanner(const RowScanner&) = delete;
  RowScanner& operator=(const RowScanner&) = delete;

  // Goes to the first place at or after the index `from` that looks like the start of a row. Call
  // this first, and after the window started over.
  void Seek(std::size_t from);

  // Returns where the next row starts, or kEnd.
  [[nodiscard]] std::uint64_t Position() const {
    return row_ != kNone ? window_.Base() + row_ : kEnd;
  }

  // Appends to `filler` the rows from Position() on, until one starts at `limit` or after it; or
  // all rows if the window meets a NUL, since positions are unknown then.
  [[nodiscard]] virtual Reading ReadRows(std::uint64_t limit, ColumnFiller& filler) = 0;

  // The values of the rows that were read last.
  [[nodiscard]] const RowValues& Values() const { return values_; }
  [[nodiscard]] TextWindow& Window() const { return window_; }

 protected:
  static constexpr std::size_t kNone = TextWindow::kNone;

  // What ReadRow of a dialect, which ReadEachRow calls, returns: it records the values of a row,
  // moves `index`, its start, to its end, and says whether it may have entities; or kNoRow if the
  // rows end before it; or kCutOff if that depends on text that is not in the window yet.
  enum class Row { kPlain, kWithEntities, kNoRow, kCutOff };

  // Returns the first index at or after `from` that looks like the start of a row, or kNone.
  [[nodiscard]] virtual std::size_t FindRow(std::size_t from) const = 0;
  // Forgets what was found in the view, which is another now.
  virtual void TakeView() = 0;

  [[nodiscard]] std::string_view View() const { return window_.View(); }

  // The body of ReadRows, compiled for each dialect: `rows` has a ReadRow as above.
  template <class Rows>
  [[nodiscard]] static Reading ReadEachRow(Rows& rows, std::uint64_t limit, ColumnFiller& filler) {
    while (rows.Position() < (rows.window_.MetNul() ? kEnd : limit)) {
      rows.ReadSomeRows(rows, rows.window_.MetNul() ? kEnd : limit);
      if (!filler.AppendRows()) return Reading::kTooLarge;
      if (rows.stalled_at_ != kNone) rows.GoOn();
      if (rows.window_.Status() != Reading::kDone) return rows.window_.Status();
      if (rows.row_ != kNone && filler.CanReserve()) {
        filler.ReserveAfter(rows.Position(), rows.window_.Source().Size());
      }
      if (call::IsCancelled()) return Reading::kCancelled;
    }
    return Reading::kDone;
  }

  RowValues values_;

 private:
  // Records rows, as many as can be held, before `limit` and the end of the view.
  template <class Rows>
  void ReadSomeRows(Rows& rows, std::uint64_t limit) {
    const std::size_t end =
        limit != kEnd ? static_cast<std::size_t>(limit - window_.Base()) : kNone;
    values_.Clear();
    while (row_ < end && stalled_at_ == kNone && !values_.IsFull()) ReadOneRow(rows);
  }

  template <class Rows>
  void ReadOneRow(Rows& rows) {
    values_.Begin();
    std::size_t index = row_;
    const Row row = rows.ReadRow(index);
    if (row == Row::kWithEntities) values_.NoteEntities();
    if (row == Row::kNoRow || row == Row::kCutOff) values_.TakeBack();
    if (row == Row::kCutOff) {
      stalled_at_ = row_;
      return;
    }
    row_ = row != Row::kNoRow ? rows.FindRow(index) : kNone;
    if (row_ == kNone && row != Row::kNoRow && !window_.IsLast()) stalled_at_ = index;
  }

  // Loads what follows the place at which reading stalled, and finds the next row.
  void GoOn();

  TextWindow& window_;
  std::size_t row_ = kNone;         // the index of the next row
  std::size_t stalled_at_ = kNone;  // the index from which on more text is needed
};

}  // namespace qv
