// Turns the texts of rows into typed cells.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "BinaryCells.h"
#include "ResultTable.h"
#include "RowValues.h"

namespace qv {

// How many rows tell what the others are like.
constexpr std::size_t kRowsBeforeReserve = 256;

// Fills every column of a table, whose cells were rebuilt, row by row. Measures the columns'
// display lengths, which the columns have when the filler is gone.
class ColumnFiller {
 public:
  // All three outlive the filler; `table` keeps its columns meanwhile. The rows come from a file of
  // `file_bytes`.
  ColumnFiller(ResultTable& table, const RowValues& values, BinaryCells& binary,
               std::size_t file_bytes);
  ~ColumnFiller();
  ColumnFiller(const ColumnFiller&) = delete;
  ColumnFiller& operator=(const ColumnFiller&) = delete;

  // Appends one cell to each column. The texts lie in a FileText, so that a little may be read
  // behind them. Without `may_have_entities` there is no ampersand in any of them. False when the
  // cells have come to take more than any honest file of that size could need: many columns times
  // many rows, all of them empty or all of one name.
  [[nodiscard]] bool AppendRow(bool may_have_entities);

  // Makes room for the rows to come, after `done` bytes of rows out of `total` were appended, when
  // it can be told.
  void ReserveAfter(std::size_t done, std::size_t total);

 private:
  // What the cells of a row share.
  struct Row {
    BinaryCells& binary;
    bool may_have_entities;
    std::size_t taken;  // by the cells so far, and by their files
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
  };

  const RowValues& values_;
  std::vector<Sink> sinks_;
  Row row_;
  std::size_t row_bytes_;  // of a row's cells, their texts apart
  std::size_t budget_;
};

}  // namespace qv
