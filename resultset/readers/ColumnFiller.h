// Turns the texts of rows into typed cells.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "RowValues.h"
#include "resultset/BinaryCells.h"
#include "resultset/Reading.h"
#include "resultset/ResultTable.h"

namespace qv {

// Fills columns, which have no cells yet, a few rows at a time. Measures the columns' display
// lengths; the destructor stores them in the columns.
class ColumnFiller {
 public:
  // All three must outlive the filler. The cells take at most what `budget` has.
  ColumnFiller(std::span<Column> columns, const RowValues& values, BinaryCells& binary,
               ResultBudget budget);
  ~ColumnFiller();
  ColumnFiller(const ColumnFiller&) = delete;
  ColumnFiller& operator=(const ColumnFiller&) = delete;

  // Appends the rows that the values hold; cells without a value are null. The texts are in a
  // TextWindow, so that some bytes after them may be read. Returns false before the cells, with the
  // values of binary ones, take more memory than the budget has; the last row is then incomplete.
  [[nodiscard]] bool AppendRows();
  // Appends the rows of `others`, which has columns of the same types. Returns false, and appends
  // nothing, if the cells would take more memory than the budget has.
  [[nodiscard]] bool AppendRowsOf(const ColumnFiller& others);
  // Drops all rows, keeping the memory for the next ones.
  void Clear();

  // Returns true once there are enough rows to estimate the others from.
  [[nodiscard]] bool CanReserve() const { return !has_reserved_ && rows_ >= kRowsBeforeReserve; }
  // Reserves memory for the remaining rows after `done` bytes of rows out of `total` were appended,
  // if it can be estimated.
  void ReserveAfter(std::uint64_t done, std::uint64_t total);
  // The rows are few: nothing is to be reserved.
  void NeverReserve() { has_reserved_ = true; }

 private:
  static constexpr std::size_t kRowsBeforeReserve = 256;

  struct Sink;

  // Appends a cell for each row, and measures them.
  using Append = void (*)(Sink& sink, const RowValues::InColumn& rows);

  static Append AppenderFor(const Column& column);
  static void AppendBooleans(Sink& sink, const RowValues::InColumn& rows);
  static void AppendIntegers(Sink& sink, const RowValues::InColumn& rows);
  static void AppendDoubles(Sink& sink, const RowValues::InColumn& rows);
  static void AppendDates(Sink& sink, const RowValues::InColumn& rows);
  static void AppendBinary(Sink& sink, const RowValues::InColumn& rows);
  static void AppendPlainTexts(Sink& sink, const RowValues::InColumn& rows);

  // A column, resolved once for all rows.
  struct Sink {
    Append append;
    void* cells;
    std::size_t slot;
    std::size_t longest;
    Column* column;
    bool holds_text;
    BinaryCells* binary;  // null unless values become files

    void Measure(std::int32_t length) {
      longest = std::max(longest, static_cast<std::size_t>(length));
    }
  };

  [[nodiscard]] Sink SinkFor(Column& column, std::size_t index, BinaryCells& binary);
  [[nodiscard]] static std::uint64_t TextBytes(const Sink& sink, const RowValues::InColumn& rows);
  [[nodiscard]] std::uint64_t BytesOfRows() const;
  [[nodiscard]] bool AppendRow(std::size_t row);

  const RowValues& values_;
  std::vector<Sink> sinks_;
  bool has_binary_ = false;
  std::size_t rows_ = 0;
  std::size_t row_bytes_;  // of a row's cells and null bits, without texts
  ResultBudget budget_;
  bool has_reserved_ = false;
};

}  // namespace qv
