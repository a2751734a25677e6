// The columns and cells of PostgreSQL as its ODBC driver gives them.
#pragma once

#include <libpq-fe.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/odbc/Diagnostics.h"
#include "tools/qvstandin/databases/Database.h"

namespace qv::standin {

// The cells of one row of an answer at a time.
class PostgresCells {
 public:
  // Returns nothing if a column has a type that only the driver can describe: arrays, types of the
  // database's own and others that are rare.
  [[nodiscard]] static std::optional<PostgresCells> Of(const PGresult* result,
                                                       std::size_t cell_limit);

  [[nodiscard]] const std::vector<Column>& Columns() const { return columns_; }
  // Reads a row. Returns false and adds to `said` if a cell is too long.
  [[nodiscard]] bool Read(const PGresult* row, odbc::Diagnostics& said);
  // Texts and bytes belong to this object or to the row that was read.
  [[nodiscard]] const std::vector<Cell>& Row() const { return cells_; }

 private:
  PostgresCells() = default;

  // Returns false if the cell is too long.
  [[nodiscard]] bool ReadCell(std::size_t column, std::string_view text);
  [[nodiscard]] std::string_view TextOf(std::size_t column, std::string_view text);

  std::size_t cell_limit_ = 0;
  std::vector<Column> columns_;
  std::vector<unsigned int> types_;
  std::vector<std::string> texts_;  // of cells that are not as PostgreSQL writes them
  std::vector<Cell> cells_;
};

}  // namespace qv::standin
