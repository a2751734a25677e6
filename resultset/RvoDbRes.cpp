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
using qv::DateCells;
using qv::DoubleCells;
using qv::IntCells;
using qv::TextCells;

namespace {

CString ToCString(std::string_view text) { return CString(text); }

// Rounds up, not to nearest: hosts rely on it for sizes and counts.
long RoundUp(double value) {
  constexpr double kMin = std::numeric_limits<std::int32_t>::min();
  constexpr double kMax = std::numeric_limits<std::int32_t>::max();
  if (std::isnan(value)) return 0;
  return static_cast<std::int32_t>(std::clamp(std::ceil(value), kMin, kMax));
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
  if (const auto* const ints = CellsAs<IntCells>(column)) return (*ints)[index];
  if (const auto* const doubles = CellsAs<DoubleCells>(column)) return RoundUp((*doubles)[index]);
  if (const auto* const texts = CellsAs<TextCells>(column)) {
    return qv::text::DecimalToInt32((*texts)[index]);
  }
  return 0;
}

COleDateTime DateOf(const Column* column, int row) {
  const auto* const dates = HasCell(column, row) ? CellsAs<DateCells>(column) : nullptr;
  return dates != nullptr ? (*dates)[static_cast<std::size_t>(row)] : COleDateTime();
}

double DoubleOf(const Column* column, int row) {
  if (!HasCell(column, row)) return 0.0;
  const auto index = static_cast<std::size_t>(row);
  if (const auto* const ints = CellsAs<IntCells>(column)) return (*ints)[index];
  if (const auto* const doubles = CellsAs<DoubleCells>(column)) return (*doubles)[index];
  return 0.0;
}

// The texts that replace a column's cells, and the length of the longest one.
class ReplacedTexts {
 public:
  void Add(std::string_view text) {
    longest_ = std::max(longest_, text.size());
    cells_.push_back(text);
  }
  void MoveTo(Column& column) {
    column.display_length = qv::text::SaturatedTo32Bits(longest_);
    column.cells = std::move(cells_);
  }

 private:
  TextCells cells_;
  std::size_t longest_ = 0;
};

// Replaces the last value by the sum of all others.
template <class Held, class Sum>
void SumIntoLastRow(Held& cells, Sum sum) {
  if (cells.size() == 0) AfxThrowInvalidArgException();
  const std::size_t last = cells.size() - 1;
  for (std::size_t row = 0; row < last; ++row) sum += static_cast<Sum>(cells[row]);
  using Value = std::remove_reference_t<decltype(cells[0])>;
  cells[last] = static_cast<Value>(sum);
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
  const COleDateTime epoch(std::time_t{0});
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
    if (auto* const ints = std::get_if<IntCells>(&column->cells)) {
      SumIntoLastRow(*ints, std::uint32_t{0});  // unsigned, so that it wraps
    } else if (auto* const doubles = std::get_if<DoubleCells>(&column->cells)) {
      SumIntoLastRow(*doubles, 0.0);
    }
  }
}

void CRvoDbRes::ReplaceStrByFieldName(const CString& field, const CMapStringToString* texts) {
  Column* const column = table_->FindColumn(field.View());
  const auto* const cells = CellsAs<TextCells>(column);
  if (cells == nullptr || texts == nullptr) return;
  ReplacedTexts replaced;
  CString working;  // kept from row to row: a missing value repeats the last one that was found
  for (std::size_t row = 0; row < cells->size(); ++row) {
    texts->Lookup(ToCString((*cells)[row]), working);
    replaced.Add(working.View());
  }
  replaced.MoveTo(*column);
}

void CRvoDbRes::ReplaceIntByFieldName(const CString& field,
                                      const CMap<long, long, CString, CString>* texts) {
  Column* const column = table_->FindColumn(field.View());
  const auto* const cells = CellsAs<IntCells>(column);
  if (cells == nullptr || texts == nullptr) return;
  ReplacedTexts replaced;
  for (std::size_t row = 0; row < cells->size(); ++row) {
    CString text;
    texts->Lookup((*cells)[row], text);
    replaced.Add(text.View());
  }
  replaced.MoveTo(*column);
  column->type = qv::kTypeVarWChar;
}
