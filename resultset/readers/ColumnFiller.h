// Turns the texts of rows into typed cells.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "RowValues.h"
#include "resultset/BinaryCells.h"
#include "resultset/Reading.h"
#include "resultset/ResultTable.h"

namespace qv {

// Fills columns, which have no cells yet, row by row. Measures the columns' display lengths; the
// destructor stores them in the columns.
class ColumnFiller {
 public:
  // All three must outlive the filler. The cells take at most what `budget` has.
  ColumnFiller(std::span<Column> columns, const RowValues& values, BinaryCells& binary,
               ResultBudget budget);
  ~ColumnFiller();
  ColumnFiller(const ColumnFiller&) = delete;
  ColumnFiller& operator=(const ColumnFiller&) = delete;

  // Appends one cell to each column; cells without a value are null. The texts are in a FileText,
  // so that some bytes after them may be read. `may_have_entities` is false if no text contains an
  // ampersand. Returns false before the cells, with the values of binary ones, take more memory
  // than the budget has; the row is then incomplete.
  [[nodiscard]] bool AppendRow(bool may_have_entities);
  // Appends the rows of `others`, which has columns of the same types. Returns false, and appends
  // nothing, if the cells would take more memory than the budget has.
  [[nodiscard]] bool AppendRows(const ColumnFiller& others);
  // Drops all rows, keeping the memory for the next ones.
  void Clear();

  // Returns true once there are enough rows to estimate the others from.
  [[nodiscard]] bool CanReserve() const { return !has_reserved_ && rows_ >= kRowsBeforeReserve; }
  // Reserves memory for the remaining rows after `done` bytes of rows out of `total` were appended,
  // if it can be estimated.
  void ReserveAfter(std::size_t done, std::size_t total);
  // The rows are few: nothing is to be reserved.
  void NeverReserve() { has_reserved_ = true; }

 private:
  static constexpr std::size_t kRowsBeforeReserve = 256;

  // What the cells of a row share.
  struct Row {
    BinaryCells& binary;
    bool may_have_entities;
  };

  // Appends one cell and returns the length of its text.
  using Append = std::size_t (*)(void* cells, std::string_view text, Row& row);

  static Append AppenderFor(const Column& column);
  static std::size_t AppendBoolean(void* cells, std::string_view text, Row&);
  static std::size_t AppendInteger(void* cells, std::string_view text, Row&);
  static std::size_t AppendDouble(void* cells, std::string_view text, Row&);
  static std::size_t AppendDate(void* cells, std::string_view text, Row&);
  static std::size_t AppendBinary(void* cells, std::string_view text, Row& row);
  static std::size_t AppendPlainText(void* cells, std::string_view text, Row& row);

  // A column, resolved once for all rows.
  struct Sink {
    Append append;
    void* cells;
    std::size_t slot;
    std::size_t longest;
    Column* column;
    bool holds_text;
    std::size_t path_bytes;  // at most, of a value that becomes a file
  };

  [[nodiscard]] Sink SinkFor(Column& column, std::size_t index);

  const RowValues& values_;
  std::vector<Sink> sinks_;
  Row row_;
  std::size_t rows_ = 0;
  std::size_t row_bytes_;  // of a row's cells and null bits, without texts
  ResultBudget budget_;
  bool has_reserved_ = false;
};

}  // namespace qv
