#include "qvnetcall/RvoDbRes.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>
#include <type_traits>

#include "CellValue.h"
#include "ResultTable.h"
#include "base/text/Letters.h"
#include "base/text/Numbers.h"
#include "qvnetcall/framework/InvalidArgException.h"

using qv::Column;
using qv::DateCell;
using qv::DateCells;
using qv::DoubleCells;
using qv::IntCells;
using qv::TextCells;

namespace {

CString ToCString(std::string_view text) { return CString(text); }

// Rounds up, not to nearest: hosts rely on it for sizes and counts.
template <class Integer>
Integer RoundUp(double value) {
  constexpr auto kMin = static_cast<double>(std::numeric_limits<Integer>::min());
  // One more than the largest integer; doubles have that number, whatever the integer's size.
  constexpr double kEnd = -kMin;
  const double rounded = std::ceil(value);
  if (std::isnan(rounded)) return 0;
  if (rounded >= kEnd) return std::numeric_limits<Integer>::max();
  return rounded <= kMin ? std::numeric_limits<Integer>::min() : static_cast<Integer>(rounded);
}

template <class Held>
const Held* CellsAs(const Column* column) {
  return column != nullptr ? std::get_if<Held>(&column->cells) : nullptr;
}

// What the accessors return for a cell of `column`, which is null for an unknown one.

bool HasCell(const Column* column, int row) {
  return column != nullptr && row >= 0 && static_cast<std::size_t>(row) < column->Rows();
}

CString TextOf(const Column* column, int row) {
  return HasCell(column, row) ? column->Text(static_cast<std::size_t>(row)) : CString();
}

CString TextAtCursor(const Column* column, int cursor) {
  if (column == nullptr) return {};
  if (!HasCell(column, cursor)) AfxThrowInvalidArgException();
  return column->Text(static_cast<std::size_t>(cursor));
}

long IntOf(const Column* column, int row) {
  if (!HasCell(column, row)) return 0;
  const auto index = static_cast<std::size_t>(row);
  if (const auto* const ints = CellsAs<IntCells>(column)) return ints->In32Bits(index);
  if (const auto* const doubles = CellsAs<DoubleCells>(column)) {
    return RoundUp<std::int32_t>((*doubles)[index]);
  }
  if (const auto* const texts = CellsAs<TextCells>(column)) {
    return qv::text::DecimalToInt32((*texts)[index]);
  }
  return 0;
}

COleDateTime DateOf(const Column* column, int row) {
  const auto* const dates = HasCell(column, row) ? CellsAs<DateCells>(column) : nullptr;
  return dates != nullptr ? (*dates)[static_cast<std::size_t>(row)].Date() : COleDateTime();
}

double DoubleOf(const Column* column, int row) {
  if (!HasCell(column, row)) return 0.0;
  const auto index = static_cast<std::size_t>(row);
  if (const auto* const ints = CellsAs<IntCells>(column)) return ints->In32Bits(index);
  if (const auto* const doubles = CellsAs<DoubleCells>(column)) return (*doubles)[index];
  return 0.0;
}

int TypeOf(const Column* column) {
  return column != nullptr ? column->type : qv::field_type::kNoField;
}

bool IsNullIn(const Column* column, int row) {
  return !HasCell(column, row) || column->nulls.Has(static_cast<std::size_t>(row));
}

std::int64_t Int64Of(const Column* column, int row) {
  if (!HasCell(column, row)) return 0;
  const auto index = static_cast<std::size_t>(row);
  if (const auto* const ints = CellsAs<IntCells>(column)) return (*ints)[index];
  if (const auto* const doubles = CellsAs<DoubleCells>(column)) {
    return RoundUp<std::int64_t>((*doubles)[index]);
  }
  if (const auto* const texts = CellsAs<TextCells>(column)) {
    return qv::text::DecimalToInt64((*texts)[index]);
  }
  return 0;
}

CString ExactTextOf(const Column* column, int row) {
  return HasCell(column, row) ? column->ExactText(static_cast<std::size_t>(row)) : CString();
}

// The texts that replace a column's cells, and the length of the longest one.
class ReplacedTexts {
 public:
  explicit ReplacedTexts(Column& column) : column_(column) {}

  void Add(std::string_view text) {
    longest_ = std::max(longest_, text.size());
    if (!text.empty()) column_.nulls.Remove(cells_.size());
    cells_.push_back(text);
  }
  void MoveToColumn() {
    column_.display_length = qv::text::SaturatedTo32Bits(longest_);
    column_.cells = std::move(cells_);
  }

 private:
  Column& column_;
  TextCells cells_;
  std::size_t longest_ = 0;
};

// Adds up integers without overflow.
class WideSum {
 public:
  void Add(std::int64_t value) {
    high_ += value >> 32;
    low_ += value & 0xFFFFFFFF;
  }

  // Returns the nearest limit if 64 bits do not hold the sum.
  [[nodiscard]] std::int64_t Value() const {
    using Limits = std::numeric_limits<std::int64_t>;
    const std::int64_t high = high_ + (low_ >> 32);
    if (high > std::numeric_limits<std::int32_t>::max()) return Limits::max();
    if (high < std::numeric_limits<std::int32_t>::min()) return Limits::min();
    return high * (std::int64_t{1} << 32) + (low_ & 0xFFFFFFFF);
  }

 private:
  std::int64_t high_ = 0;  // of the sum's upper halves
  std::int64_t low_ = 0;   // of its lower halves, which are not negative
};

// Replace the last value by the sum of all others.

void SumIntoLastRow(IntCells& cells) {
  const std::size_t last = cells.size() - 1;
  WideSum sum;
  std::uint32_t in_32_bits = 0;  // unsigned, so that it wraps
  for (std::size_t row = 0; row < last; ++row) {
    sum.Add(cells[row]);
    in_32_bits += static_cast<std::uint32_t>(cells.In32Bits(row));
  }
  cells.SetSum(last, sum.Value(), static_cast<std::int32_t>(in_32_bits));
}

void SumIntoLastRow(DoubleCells& cells) {
  const std::size_t last = cells.size() - 1;
  double sum = 0.0;
  for (std::size_t row = 0; row < last; ++row) sum += cells[row];
  cells[last] = sum;
}

template <class Held>
void AddSum(Column& column) {
  auto* const cells = std::get_if<Held>(&column.cells);
  if (cells == nullptr) return;
  if (cells->size() == 0) AfxThrowInvalidArgException();
  SumIntoLastRow(*cells);
  column.nulls.Remove(cells->size() - 1);
}

}  // namespace

CRvoDbRes::CRvoDbRes() : table_(std::make_unique<qv::ResultTable>()) {}

CRvoDbRes::~CRvoDbRes() = default;

int CRvoDbRes::GetFieldCount() const { return table_->ColumnCount(); }

int CRvoDbRes::GetRecordCount() const { return table_->RowCount(); }

int CRvoDbRes::MoveFirst() {
  if (GetRecordCount() == 0) return 0;
  table_->cursor = 0;
  return 1;
}

int CRvoDbRes::MoveNext() {
  if (table_->cursor + 1 >= GetRecordCount()) return 0;
  ++table_->cursor;
  return 1;
}

CString CRvoDbRes::operator[](int column) const {
  return TextAtCursor(table_->ColumnAt(column), table_->cursor);
}

CString CRvoDbRes::operator[](const char* field) const {
  const std::string_view name = qv::text::Trimmed(field != nullptr ? field : "");
  return TextAtCursor(table_->FindColumn(name), table_->cursor);
}

CString CRvoDbRes::_str(int row, int column) const { return TextOf(table_->ColumnAt(column), row); }

long CRvoDbRes::_int(int row, int column) const { return IntOf(table_->ColumnAt(column), row); }

COleDateTime CRvoDbRes::_time(int row, int column) const {
  return DateOf(table_->ColumnAt(column), row);
}

double CRvoDbRes::_dabl(int row, int column) const {
  return DoubleOf(table_->ColumnAt(column), row);
}

CString CRvoDbRes::_str(int row, const CString& field) const {
  return TextOf(table_->FindColumn(field.View()), row);
}

long CRvoDbRes::_int(int row, const CString& field) const {
  return IntOf(table_->FindColumn(field.View()), row);
}

COleDateTime CRvoDbRes::_time(int row, const CString& field) const {
  return DateOf(table_->FindColumn(field.View()), row);
}

double CRvoDbRes::_dabl(int row, const CString& field) const {
  return DoubleOf(table_->FindColumn(field.View()), row);
}

int CRvoDbRes::GetFieldType(int column) const { return TypeOf(table_->ColumnAt(column)); }

int CRvoDbRes::GetFieldType(const CString& field) const {
  return TypeOf(table_->FindColumn(field.View()));
}

bool CRvoDbRes::IsNull(int row, int column) const {
  return IsNullIn(table_->ColumnAt(column), row);
}

bool CRvoDbRes::IsNull(int row, const CString& field) const {
  return IsNullIn(table_->FindColumn(field.View()), row);
}

std::int64_t CRvoDbRes::_int64(int row, int column) const {
  return Int64Of(table_->ColumnAt(column), row);
}

std::int64_t CRvoDbRes::_int64(int row, const CString& field) const {
  return Int64Of(table_->FindColumn(field.View()), row);
}

CString CRvoDbRes::_text(int row, int column) const {
  return ExactTextOf(table_->ColumnAt(column), row);
}

CString CRvoDbRes::_text(int row, const CString& field) const {
  return ExactTextOf(table_->FindColumn(field.View()), row);
}

CString CRvoDbRes::GetFiledName(int column) const {
  if (column < 0 || column >= GetFieldCount()) AfxThrowInvalidArgException();
  return ToCString(table_->Columns()[static_cast<std::size_t>(column)].name);
}

int CRvoDbRes::GetFiledLength(int column) const {
  if (column < 0 || column >= GetFieldCount()) AfxThrowInvalidArgException();
  return table_->Columns()[static_cast<std::size_t>(column)].display_length;
}

int CRvoDbRes::GetFieldNameId(const CString& field) const { return table_->IndexOf(field.View()); }

void CRvoDbRes::DelOneColumn(const CString& field) {
  const int column = GetFieldNameId(field);
  if (column >= 0) table_->RemoveColumn(column);
}

void CRvoDbRes::AddOneRow() {
  const DateCell epoch = DateCell::Of(COleDateTime(std::time_t{0}));
  for (Column& column : table_->Columns()) {
    std::visit(
        [&](auto& cells) {
          using Held = std::remove_reference_t<decltype(cells)>;
          if constexpr (std::is_same_v<Held, DateCells>) {
            cells.push_back(epoch);
          } else {
            cells.push_back({});
          }
        },
        column.cells);
  }
}

void CRvoDbRes::AddSumInfo(const CStringArray& fields) {
  for (int i = 0; i < fields.GetSize(); ++i) {
    Column* const column = table_->FindColumn(fields.GetAt(i).View());
    if (column == nullptr) continue;
    AddSum<IntCells>(*column);
    AddSum<DoubleCells>(*column);
  }
}

void CRvoDbRes::ReplaceStrByFieldName(const CString& field, const CMapStringToString* texts) {
  Column* const column = table_->FindColumn(field.View());
  const auto* const cells = CellsAs<TextCells>(column);
  if (cells == nullptr || texts == nullptr) return;
  ReplacedTexts replaced(*column);
  CString working;  // kept from row to row: a missing value repeats the last one that was found
  for (std::size_t row = 0; row < cells->size(); ++row) {
    texts->Lookup(ToCString(cells->InPlatformsForm(row)), working);
    replaced.Add(working.View());
  }
  replaced.MoveToColumn();
}

void CRvoDbRes::ReplaceIntByFieldName(const CString& field,
                                      const CMap<long, long, CString, CString>* texts) {
  Column* const column = table_->FindColumn(field.View());
  const auto* const cells = CellsAs<IntCells>(column);
  if (cells == nullptr || texts == nullptr) return;
  ReplacedTexts replaced(*column);
  for (std::size_t row = 0; row < cells->size(); ++row) {
    CString text;
    texts->Lookup(cells->In32Bits(row), text);
    replaced.Add(text.View());
  }
  replaced.MoveToColumn();
  column->type = qv::kTypeVarWChar;
}
