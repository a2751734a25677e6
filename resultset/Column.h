// One column of a result set: its name, its lengths, its type code, and its cells.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "GrowArray.h"
#include "TextCells.h"
#include "qvnetcall/framework/OleDateTime.h"
#include "qvnetcall/framework/String.h"

namespace qv {

// The type codes that the readers distinguish; every other code is text.
enum TypeCode : std::uint8_t {
  kTypeNone = 0,
  kTypeSmallInt = 2,
  kTypeInteger = 3,
  kTypeSingle = 4,  // stored as text
  kTypeDouble = 5,
  kTypeDate = 7,
  kTypeBoolean = 11,
  kTypeUnsignedTinyInt = 17,
  kTypeBigInt = 20,  // stored in 32 bits
  kTypeChar = 129,
  kTypeNumeric = 131,  // stored as text
  kTypeTimeStamp = 135,
  kTypeVarChar = 200,
  kTypeLongVarChar = 201,
  kTypeVarWChar = 202,
  kTypeLongVarBinary = 205,
};

// A dialect's name of a type.
struct NamedType {
  std::string_view name;
  TypeCode type;
};

// Returns the type of that name, or kTypeNone if it is not among `types`.
[[nodiscard]] std::uint8_t FindType(std::span<const NamedType> types, std::string_view name);

using IntCells = GrowArray<std::int32_t>;
using DoubleCells = GrowArray<double>;
using DateCells = GrowArray<COleDateTime>;
using Cells = std::variant<TextCells, IntCells, DoubleCells, DateCells>;

// Returns empty cells of the kind that a type code needs.
[[nodiscard]] Cells CellsFor(std::uint8_t type);

struct Column {
  std::string name;  // as it was declared
  std::int32_t declared_length = 0;
  std::int32_t display_length = 0;
  std::uint8_t type = kTypeNone;
  Cells cells{};

  [[nodiscard]] std::size_t Rows() const;
  // Returns the text form of an existing cell.
  [[nodiscard]] CString Text(std::size_t row) const;
};

}  // namespace qv
