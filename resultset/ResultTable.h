// The content of a CRvoDbRes.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "Column.h"
#include "NameIndex.h"
#include "qvnetcall/RvoDbRes.h"

namespace qv {

class ResultTable {
 public:
  // Returns the table of a result set.
  static ResultTable& Of(CRvoDbRes& result) { return *result.table_; }

  std::int32_t cursor = 0;

  // Every column's cells may change, but not its name.
  [[nodiscard]] std::span<Column> Columns() { return columns_; }
  [[nodiscard]] std::span<const Column> Columns() const { return columns_; }
  // Appends a column and returns it, valid until the next is added or one is removed. Throws
  // std::bad_alloc and then changes nothing.
  Column& AddColumn(Column column);
  // Removes the column at `index`, which must exist; those after it move up.
  void RemoveColumn(std::int32_t index);

  // The number of cells in the first column, clamped to 32 bits.
  [[nodiscard]] std::int32_t RowCount() const;
  [[nodiscard]] std::int32_t ColumnCount() const;

  // Returns the index of the first column of that name, in which ASCII letters of either case are
  // equal, or -1.
  [[nodiscard]] std::int32_t IndexOf(std::string_view name) const;
  // Returns that column, or null.
  [[nodiscard]] Column* FindColumn(std::string_view name);
  // Returns the column at `index`, or null.
  [[nodiscard]] const Column* ColumnAt(std::int32_t index) const;

  // Gives every column new, empty cells of the kind that its type code needs.
  void RebuildCells();

 private:
  std::vector<Column> columns_;
  NameIndex names_;  // of columns_
};

}  // namespace qv
