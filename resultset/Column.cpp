#include "Column.h"

#include <algorithm>

#include "CellText.h"

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
    default:
      return TextCells();
  }
}

std::size_t Column::Rows() const {
  return std::visit([](const auto& held) { return held.size(); }, cells);
}

CString Column::Text(std::size_t row) const {
  return std::visit([row](const auto& held) { return CellText(held[row]); }, cells);
}

}  // namespace qv
