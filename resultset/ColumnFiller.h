// Turns the texts of rows into typed cells.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "BinaryCells.h"
#include "ResultTable.h"
#include "RowValues.h"

namespace qv {

// Fills every column of a table, whose cells were rebuilt, row by row, and measures the columns'
// display lengths.
class ColumnFiller {
 public:
  // `table` and `binary` outlive the filler; `table` keeps its columns meanwhile.
  ColumnFiller(ResultTable& table, BinaryCells& binary);

  // Appends one cell to each column. The texts lie in a FileText, so that a little may be read
  // behind them.
  void AppendRow(const RowValues& values);

 private:
  enum class Kind { kBoolean, kInteger, kDouble, kDate, kBinary, kText };

  // A column, resolved once for all rows.
  struct Sink {
    Kind kind;
    Column* column;
    void* cells;
  };

  static Sink MakeSink(Column& column);
  // Appends one cell and returns the length of its text.
  std::size_t Append(const Sink& sink, std::string_view text);

  std::vector<Sink> sinks_;
  BinaryCells& binary_;
};

}  // namespace qv
