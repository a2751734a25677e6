#include "Column.h"

#include "CellText.h"

namespace qv {

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
    default:
      return TextCells();
  }
}

std::size_t Column::Rows() const {
  return std::visit([](const auto& held) { return held.size(); }, cells);
}

std::string Column::Text(std::size_t row) const {
  return std::visit([row](const auto& held) { return CellText(held[row]); }, cells);
}

}  // namespace qv
