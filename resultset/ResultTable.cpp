#include "ResultTable.h"

#include <algorithm>
#include <utility>

#include "CellValue.h"
#include "base/text/Numbers.h"

namespace qv {

std::uint8_t FindType(std::span<const NamedType> types, std::string_view name) {
  const auto found = std::find_if(types.begin(), types.end(),
                                  [&](const NamedType& type) { return type.name == name; });
  return found != types.end() ? found->type : kTypeNone;
}

Cells CellsFor(std::uint8_t type) {
  switch (type) {
    case kTypeSmallInt:
    case kTypeInteger:
    case kTypeBoolean:
    case kTypeUnsignedTinyInt:
    case kTypeBigInt:
      return IntCells();
    case kTypeDouble:
      return DoubleCells();
    case kTypeDate:
    case kTypeTimeStamp:
      return DateCells();
    case kTypeLongVarBinary:
      return TextCells(TextCells::PlatformsForm::kAsItIs);
    default:
      return TextCells(TextCells::PlatformsForm::kTrimmed);
  }
}

std::size_t CellBytes(const Cells& cells) {
  return std::visit([](const auto& held) { return held.kCellBytes; }, cells);
}

std::size_t Column::Rows() const {
  return std::visit([](const auto& held) { return held.size(); }, cells);
}

CString Column::Text(std::size_t row) const {
  if (const auto* const ints = std::get_if<IntCells>(&cells)) return CellText(ints->In32Bits(row));
  if (const auto* const dates = std::get_if<DateCells>(&cells)) {
    return CellText((*dates)[row].Date());
  }
  if (const auto* const doubles = std::get_if<DoubleCells>(&cells))
    return CellText((*doubles)[row]);
  return CString(std::get<TextCells>(cells).InPlatformsForm(row));
}

CString Column::ExactText(std::size_t row) const {
  if (nulls.Has(row)) return {};
  return std::visit([row](const auto& held) { return qv::ExactText(held[row]); }, cells);
}

void Column::RebuildCells() {
  cells = CellsFor(type);
  nulls.Clear();
}

Column& ResultTable::AddColumn(Column column) {
  columns_.push_back(std::move(column));
  try {
    names_.Add(columns_.back().name);
  } catch (...) {
    columns_.pop_back();
    throw;
  }
  return columns_.back();
}

void ResultTable::RemoveColumn(std::int32_t index) {
  names_.Remove(static_cast<std::size_t>(index));
  columns_.erase(columns_.begin() + index);
}

std::int32_t ResultTable::RowCount() const {
  return columns_.empty() ? 0 : text::SaturatedTo32Bits(columns_.front().Rows());
}

std::int32_t ResultTable::ColumnCount() const { return text::SaturatedTo32Bits(columns_.size()); }

std::int32_t ResultTable::IndexOf(std::string_view name) const {
  const std::size_t found = names_.Find(name);
  return found < static_cast<std::size_t>(ColumnCount()) ? static_cast<std::int32_t>(found) : -1;
}

Column* ResultTable::FindColumn(std::string_view name) {
  const std::size_t found = names_.Find(name);
  return found != NameIndex::kNotFound ? &columns_[found] : nullptr;
}

const Column* ResultTable::ColumnAt(std::int32_t index) const {
  return index >= 0 && index < ColumnCount() ? &columns_[static_cast<std::size_t>(index)] : nullptr;
}

void ResultTable::RebuildCells() {
  for (Column& column : columns_) column.RebuildCells();
}

}  // namespace qv
