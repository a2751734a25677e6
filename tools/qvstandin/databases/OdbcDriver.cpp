#include "OdbcDriver.h"

#include <algorithm>
#include <array>
#include <limits>

#include "base/text/Letters.h"

namespace qv::standin {

namespace {

struct Setting {
  const char* key;
  const char* value;
};

// Without these the driver returns truth values as text, and can undo statement by statement, which
// costs a savepoint for each.
constexpr std::array kForPostgres{Setting{"BoolsAsChar", "0"}, Setting{"Protocol", "7.4-1"}};
// The driver fetches in pieces by means of cursors, and takes every WITH for a query that it can
// open a cursor on.
constexpr std::array kInPieces{Setting{"UseDeclareFetch", "1"}, Setting{"Fetch", "400"}};

using odbc::CellState;

ColumnKind KindOf(odbc::ColumnKind kind) {
  switch (kind) {
    case odbc::ColumnKind::kBit:
      return ColumnKind::kBoolean;
    case odbc::ColumnKind::kTinyInt:
      return ColumnKind::kUint8;
    case odbc::ColumnKind::kSmallInt:
      return ColumnKind::kInt16;
    case odbc::ColumnKind::kInteger:
      return ColumnKind::kInt32;
    case odbc::ColumnKind::kBigInt:
      return ColumnKind::kInt64;
    case odbc::ColumnKind::kReal:
      return ColumnKind::kSingle;
    case odbc::ColumnKind::kDouble:
      return ColumnKind::kDouble;
    case odbc::ColumnKind::kDecimal:
      return ColumnKind::kDecimal;
    case odbc::ColumnKind::kChar:
    case odbc::ColumnKind::kWideChar:
      return ColumnKind::kFixedText;
    case odbc::ColumnKind::kLongVarChar:
    case odbc::ColumnKind::kLongWideVarChar:
      return ColumnKind::kLongText;
    case odbc::ColumnKind::kBinary:
      return ColumnKind::kBinary;
    case odbc::ColumnKind::kDate:
      return ColumnKind::kDate;
    case odbc::ColumnKind::kTimestamp:
      return ColumnKind::kDateTime;
    case odbc::ColumnKind::kVarChar:
    case odbc::ColumnKind::kWideVarChar:
    case odbc::ColumnKind::kOther:
      return ColumnKind::kText;
  }
  return ColumnKind::kText;
}

// The length of long columns is ignored: drivers report one of their settings.
std::uint32_t LengthOf(ColumnKind kind, std::uint64_t size) {
  if (kind != ColumnKind::kFixedText && kind != ColumnKind::kText) return 0;
  constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
  return size <= kMost ? static_cast<std::uint32_t>(size) : 0;
}

}  // namespace

bool HasPostgresDriver(const text::ConnectionText& text) {
  const std::string* const driver = text.ValueOf("driver");
  if (driver == nullptr) return false;
  const auto is_named = [driver](std::string_view name) {
    return text::FindIgnoringCase(*driver, name) != std::string_view::npos;
  };
  return is_named("postgresql") || is_named("psqlodbc");
}

std::string WithDriverSettings(const text::ConnectionText& text, Fetching fetching) {
  std::string whole = text.Text();
  if (!HasPostgresDriver(text)) return whole;
  const auto add = [&](const Setting& setting) {
    if (text.ValueOf(setting.key) != nullptr) return;
    whole += std::string(";") + setting.key + "=" + setting.value;
  };
  std::ranges::for_each(kForPostgres, add);
  if (fetching == Fetching::kInPieces) std::ranges::for_each(kInPieces, add);
  return whole;
}

std::vector<Column> ColumnsOf(const odbc::Statement& statement) {
  std::vector<Column> columns;
  for (const odbc::Column& column : statement.Columns()) {
    const ColumnKind kind = KindOf(column.kind);
    columns.push_back({column.name, kind, LengthOf(kind, column.size)});
  }
  return columns;
}

OdbcCells::OdbcCells(const std::vector<Column>& columns) : cells_(columns.size()) {
  for (const Column& column : columns) slots_.push_back({column.kind, {}, {}});
}

bool OdbcCells::Read(odbc::Statement& statement, odbc::Diagnostics& diagnostics) {
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    Slot& slot = slots_[i];
    const std::size_t before = diagnostics.size();
    CellState state = ReadCell(statement, i, slot, cells_[i], diagnostics);
    if (state == CellState::kMisfit) {
      diagnostics.resize(before);
      state = statement.ReadText(i, slot.text, diagnostics);
      cells_[i] = std::string_view(slot.text);
    }
    if (state == CellState::kNull) cells_[i] = std::monostate();
    if (state != CellState::kNull && state != CellState::kValue) return false;
  }
  return true;
}

// Decimals are read as text so that no digit is lost, and dates because their text is the same with
// every driver.
CellState OdbcCells::ReadCell(odbc::Statement& statement, std::size_t column, Slot& slot,
                              Cell& cell, odbc::Diagnostics& diagnostics) {
  CellState state = CellState::kValue;
  switch (slot.kind) {
    case ColumnKind::kBoolean:
    case ColumnKind::kInt16:
    case ColumnKind::kInt32:
    case ColumnKind::kInt64:
    case ColumnKind::kUint8:
      return statement.ReadInteger(column, cell.emplace<std::int64_t>(), diagnostics);
    case ColumnKind::kDouble:
    case ColumnKind::kSingle:
      return statement.ReadDouble(column, cell.emplace<double>(), diagnostics);
    case ColumnKind::kBinary:
      state = statement.ReadBytes(column, slot.bytes, diagnostics);
      cell = Binary{{reinterpret_cast<const char*>(slot.bytes.data()), slot.bytes.size()}};
      return state;
    default:
      state = statement.ReadText(column, slot.text, diagnostics);
      cell = std::string_view(slot.text);
      return state;
  }
}

}  // namespace qv::standin
