// Copies the rows of a statement into the columns of a result set.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/odbc/Statement.h"
#include "qvnetcall/TempFileInfo.h"
#include "resultset/BinaryCells.h"
#include "resultset/Reading.h"
#include "resultset/ResultTable.h"

namespace qv {

// Produces the columns that the recordset readers would have produced, with cells in the same form.
// If a cell's value does not fit its column's type (some databases allow that), its text is parsed
// the way the readers do.
class CursorReader {
 public:
  // `statement` and `diagnostics` must outlive the reader. Binary cells become files named by
  // `files`, and stay empty if it names no folder.
  CursorReader(odbc::Statement& statement, const tagTEMPFILEINFO& files,
               odbc::Diagnostics& diagnostics);
  ~CursorReader();
  CursorReader(const CursorReader&) = delete;
  CursorReader& operator=(const CursorReader&) = delete;

  // Reads every row of the statement's current result, which has columns. Returns false with the
  // reason in the diagnostics if reading breaks off, or if the cells would take more memory than
  // ResultLimit().
  [[nodiscard]] bool Read();

  // Appends the columns that were read to `table`, whose own columns get the same number of null
  // cells. If it is not called, the destructor removes the files of binary cells.
  void MoveTo(ResultTable& table);

 private:
  struct Appended {
    odbc::CellState state;
    std::size_t length = 0;  // of the cell's text
  };

  // Appends the row's cell of the column at `index`. If the state is kFailed, it has appended
  // nothing, and the row cannot be read further.
  using Append = Appended (CursorReader::*)(std::size_t index, Cells& cells);

  struct Target {
    Append append;
    Column column;
    std::size_t longest = 0;
  };

  [[nodiscard]] static Target TargetFor(const odbc::Column& column);
  [[nodiscard]] static Append AppenderFor(const Column& column);
  [[nodiscard]] bool AppendRow();
  // Returns false with a diagnostic if the cells may not take so much more memory.
  [[nodiscard]] bool Take(std::size_t bytes);
  Appended AppendBoolean(std::size_t index, Cells& cells);
  Appended AppendInteger(std::size_t index, Cells& cells);
  Appended AppendDouble(std::size_t index, Cells& cells);
  Appended AppendDate(std::size_t index, Cells& cells);
  Appended AppendPlainText(std::size_t index, Cells& cells);
  Appended AppendBinary(std::size_t index, Cells& cells);

  // Returns the text of a cell that did not fit its type, or an empty text if it cannot be read.
  // Valid until the next call.
  [[nodiscard]] std::string_view MisfitText(std::size_t index);
  [[nodiscard]] std::string_view PaddedText();

  odbc::Statement& statement_;
  odbc::Diagnostics& diagnostics_;
  std::optional<HexCells> files_;
  ResultBudget budget_;
  std::size_t row_bytes_ = 0;  // of a row's cells and null bits, without texts
  std::vector<Target> targets_;
  std::size_t rows_ = 0;
  std::string text_;
  std::vector<unsigned char> bytes_;
};

}  // namespace qv
