// The content of a CRvoDbRes: its columns, with their names, lengths, type codes and cells.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Cells.h"
#include "DateCell.h"
#include "NameIndex.h"
#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/framework/String.h"

namespace qv {

// The type codes that the readers distinguish; every other code is text.
enum TypeCode : std::uint8_t {
  kTypeNone = field_type::kUnknown,
  kTypeSmallInt = field_type::kSmallInt,
  kTypeInteger = field_type::kInteger,
  kTypeSingle = field_type::kSingle,  // stored as text
  kTypeDouble = field_type::kDouble,
  kTypeDate = field_type::kDate,
  kTypeBoolean = field_type::kBoolean,
  kTypeUnsignedTinyInt = field_type::kUnsignedTinyInt,
  kTypeBigInt = field_type::kBigInt,
  kTypeChar = field_type::kChar,
  kTypeNumeric = field_type::kNumeric,  // stored as text
  kTypeTimeStamp = field_type::kTimeStamp,
  kTypeVarChar = field_type::kVarChar,
  kTypeLongVarChar = field_type::kLongVarChar,
  kTypeVarWChar = field_type::kVarWChar,
  kTypeLongVarBinary = field_type::kLongVarBinary,
};

// A dialect's name of a type.
struct NamedType {
  std::string_view name;
  TypeCode type;
};

// Returns the type of that name, or kTypeNone if it is not among `types`.
[[nodiscard]] std::uint8_t FindType(std::span<const NamedType> types, std::string_view name);

using DoubleCells = GrowArray<double>;
using DateCells = GrowArray<DateCell>;
using Cells = std::variant<TextCells, IntCells, DoubleCells, DateCells>;

// Returns empty cells of the kind that a type code needs.
[[nodiscard]] Cells CellsFor(std::uint8_t type);

// Returns the memory of one cell, without its text and its null bit.
[[nodiscard]] std::size_t CellBytes(const Cells& cells);

struct Column {
  std::string name;  // as it was declared
  std::int32_t declared_length = 0;
  std::int32_t display_length = 0;
  std::uint8_t type = kTypeNone;
  Cells cells{};
  NullRows nulls{};

  [[nodiscard]] std::size_t Rows() const;
  // Returns the text form of an existing cell, as the platform's calls give it.
  [[nodiscard]] CString Text(std::size_t row) const;
  // Returns it without loss; empty if the cell is null.
  [[nodiscard]] CString ExactText(std::size_t row) const;

  // Gives the column new, empty cells of the kind that its type code needs.
  void RebuildCells();
};

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

  // Gives every column new, empty cells.
  void RebuildCells();

 private:
  std::vector<Column> columns_;
  NameIndex names_;  // of columns_
};

}  // namespace qv
