// ODBC drivers: the settings that the server needs, and the conversion of their rows.
#pragma once

#include <string>
#include <vector>

#include "Database.h"
#include "base/odbc/Statement.h"
#include "base/text/ConnectionText.h"

namespace qv::standin {

// How a driver fetches rows.
enum class Fetching {
  kInPieces,  // so that no answer is in memory as a whole
  kAtOnce,
};

// Returns whether the text names PostgreSQL's driver.
[[nodiscard]] bool HasPostgresDriver(const text::ConnectionText& text);

// Returns the connection text followed by the driver settings that the server needs and the text
// does not contain.
[[nodiscard]] std::string WithDriverSettings(const text::ConnectionText& text, Fetching fetching);

// Returns the columns of a statement's current result, as the driver declares them.
[[nodiscard]] std::vector<Column> ColumnsOf(const odbc::Statement& statement);

// The cells of one row at a time.
class OdbcCells {
 public:
  explicit OdbcCells(const std::vector<Column>& columns);

  // Reads the statement's current row. Returns false if the driver fails.
  [[nodiscard]] bool Read(odbc::Statement& statement, odbc::Diagnostics& diagnostics);
  // Texts and bytes belong to this object and are valid until the next Read().
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
