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
#include "resultset/ResultTable.h"

namespace qv {

// What a recordset file would have said of the same answer: columns of the same types and lengths,
// cells in the same form. A cell that is no value of its column's type, as some databases allow, is
// what the readers make of its text.
class CursorReader {
 public:
  // `statement` and `diagnostics` outlive the reader. Binary cells become files as `files` names
  // them, and stay empty when it names no folder.
  CursorReader(odbc::Statement& statement, const tagTEMPFILEINFO& files,
               odbc::Diagnostics& diagnostics);
  ~CursorReader();
  CursorReader(const CursorReader&) = delete;
  CursorReader& operator=(const CursorReader&) = delete;

  // Reads every row of the result that the statement stands at, which has columns. False, and why
  // in the diagnostics, when it breaks off.
  [[nodiscard]] bool Read();

  // Moves what was read behind the columns of `table`, whose own cells become as many neutral ones.
  // Without it, the files of binary cells are removed with the reader.
  void MoveTo(ResultTable& table);

 private:
  // Appends the cell of the row in the column at `index` and returns the length of its text;
  // nothing when the row cannot be read on.
  using Append = std::optional<std::size_t> (CursorReader::*)(std::size_t index, Cells& cells);

  struct Target {
    Append append;
    Column column;
    std::size_t longest = 0;
  };

  [[nodiscard]] static Target TargetFor(const odbc::Column& column);
  [[nodiscard]] static Append AppenderFor(const Column& column);
  [[nodiscard]] bool AppendRow();
  std::optional<std::size_t> AppendBoolean(std::size_t index, Cells& cells);
  std::optional<std::size_t> AppendInteger(std::size_t index, Cells& cells);
  std::optional<std::size_t> AppendDouble(std::size_t index, Cells& cells);
  std::optional<std::size_t> AppendDate(std::size_t index, Cells& cells);
  std::optional<std::size_t> AppendPlainText(std::size_t index, Cells& cells);
  std::optional<std::size_t> AppendBinary(std::size_t index, Cells& cells);

  // The text of a cell that did not fit its type; empty when it cannot be had either. Good until
  // the next one.
  [[nodiscard]] std::string_view MisfitText(std::size_t index);
  [[nodiscard]] std::string_view PaddedText();

  odbc::Statement& statement_;
  odbc::Diagnostics& diagnostics_;
  std::optional<HexCells> files_;
  std::vector<Target> targets_;
  std::size_t rows_ = 0;
  std::string text_;
  std::vector<unsigned char> bytes_;
};

}  // namespace qv
