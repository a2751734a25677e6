// ODBC drivers: what the server needs of those that it knows, and their rows as those of an answer.
#pragma once

#include <string>
#include <vector>

#include "Database.h"
#include "base/odbc/Statement.h"
#include "base/text/ConnectionText.h"

namespace qv::standin {

enum class Rows {
  kInPieces,  // so that no answer stands in memory whole
  kAtOnce,
};

// Returns the connection text, with the settings after it that the server needs of its driver and
// that the text does not make itself.
[[nodiscard]] std::string WithDriverSettings(const text::ConnectionText& text, Rows rows);

// The columns of the result that a statement stands at, as the driver declares them.
[[nodiscard]] std::vector<Column> ColumnsOf(const odbc::Statement& statement);

// Holds one row at a time.
class OdbcCells {
 public:
  explicit OdbcCells(const std::vector<Column>& columns);

  // Reads the row that the statement stands at. False when the driver cannot give it.
  [[nodiscard]] bool Read(odbc::Statement& statement, odbc::Diagnostics& diagnostics);
  // Texts and bytes are this object's until the next row.
  [[nodiscard]] const std::vector<Cell>& Row() const { return cells_; }

 private:
  struct Slot {
    ColumnKind kind;
    std::string text;
    std::vector<unsigned char> bytes;
  };

  [[nodiscard]] static odbc::CellState ReadCell(odbc::Statement& statement, std::size_t column,
                                                Slot& slot, Cell& cell,
                                                odbc::Diagnostics& diagnostics);

  std::vector<Slot> slots_;
  std::vector<Cell> cells_;
};

}  // namespace qv::standin
