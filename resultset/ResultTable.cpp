#include "ResultTable.h"

#include <algorithm>
#include <limits>

namespace qv {

namespace {

std::int32_t HeldWithin32Bits(std::size_t count) {
  constexpr std::size_t kMax = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(count, kMax));
}

}  // namespace

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

std::int32_t ResultTable::RowCount() const {
  return columns.empty() ? 0 : HeldWithin32Bits(columns.front().Rows());
}

std::int32_t ResultTable::ColumnCount() const { return HeldWithin32Bits(columns.size()); }

Column* ResultTable::FindColumn(std::string_view name) {
  const std::string wanted = LowerCase(name);
  const auto found = std::find_if(columns.begin(), columns.end(), [&](const Column& column) {
    return column.name.size() == wanted.size() && LowerCase(column.name) == wanted;
  });
  return found != columns.end() ? &*found : nullptr;
}

const Column* ResultTable::ColumnWithCell(std::int32_t row, std::int32_t index) const {
  if (row < 0 || index < 0 || index >= ColumnCount()) return nullptr;
  const Column& column = columns[static_cast<std::size_t>(index)];
  return static_cast<std::size_t>(row) < column.Rows() ? &column : nullptr;
}

void ResultTable::RebuildCells() {
  for (Column& column : columns) column.cells = CellsFor(column.type);
}

}  // namespace qv
