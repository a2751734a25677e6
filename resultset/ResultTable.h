// What a CRvoDbRes holds.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "Column.h"
#include "qvnetcall/RvoDbRes.h"

namespace qv {

// Text with the ASCII letters in lower case: the form in which field names are compared.
[[nodiscard]] std::string LowerCase(std::string_view text);

class ResultTable {
 public:
  // The table behind a result set.
  static ResultTable& Of(CRvoDbRes& result) { return *result.table_; }

  std::vector<Column> columns;
  std::int32_t cursor = 0;

  // Rows, as the first column counts them; held within 32 bits.
  [[nodiscard]] std::int32_t RowCount() const;
  [[nodiscard]] std::int32_t ColumnCount() const;

  // The first column of that name, ignoring case; null when there is none.
  [[nodiscard]] Column* FindColumn(std::string_view name);
  // The column at `index` when it has a cell in `row`; else null.
  [[nodiscard]] const Column* ColumnWithCell(std::int32_t row, std::int32_t index) const;

  // Gives every column new, empty cells of the kind that its type code asks for.
  void RebuildCells();
};

}  // namespace qv
