#include "Statement.h"

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>

#include "DriverCalls.h"
#include "base/platform/Platform.h"
#include "base/text/Numbers.h"

namespace qv::odbc {

namespace {

// The most that one call fetches of a cell.
constexpr std::size_t kPieceBytes = 64U << 10;

ColumnKind KindOf(SQLSMALLINT type) {
  switch (type) {
    case SQL_BIT:
      return ColumnKind::kBit;
    case SQL_TINYINT:
      return ColumnKind::kTinyInt;
    case SQL_SMALLINT:
      return ColumnKind::kSmallInt;
    case SQL_INTEGER:
      return ColumnKind::kInteger;
    case SQL_BIGINT:
      return ColumnKind::kBigInt;
    case SQL_REAL:
      return ColumnKind::kReal;
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return ColumnKind::kDouble;
    case SQL_NUMERIC:
    case SQL_DECIMAL:
      return ColumnKind::kDecimal;
    case SQL_CHAR:
      return ColumnKind::kChar;
    case SQL_VARCHAR:
      return ColumnKind::kVarChar;
    case SQL_LONGVARCHAR:
      return ColumnKind::kLongVarChar;
    case SQL_WCHAR:
      return ColumnKind::kWideChar;
    case SQL_WVARCHAR:
      return ColumnKind::kWideVarChar;
    case SQL_WLONGVARCHAR:
      return ColumnKind::kLongWideVarChar;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return ColumnKind::kBinary;
    case SQL_TYPE_DATE:
      return ColumnKind::kDate;
    case SQL_TYPE_TIMESTAMP:
      return ColumnKind::kTimestamp;
    default:
      return ColumnKind::kOther;
  }
}

// Drivers that do not know the size report 0 or a negative number.
std::uint64_t SizeOf(SQLULEN size) {
  constexpr SQLULEN kMost = std::numeric_limits<SQLLEN>::max();
  return size <= kMost ? size : 0;
}

bool IsDate(const Column& column) {
  return column.kind == ColumnKind::kDate || column.kind == ColumnKind::kTimestamp;
}

// Returns the number in up to `length` digits of a text, or 0 if they are not there.
std::int32_t NumberIn(std::string_view text, std::size_t at, std::size_t length) {
  if (at >= text.size()) return 0;
  return text::ParseNumber<std::int32_t>(text.substr(at, length)).value_or(0);
}

// Returns the time in a text such as "2024-02-29 23:59:58.125".
Timestamp TimestampIn(std::string_view text) {
  constexpr std::size_t kFraction = 20;
  Timestamp time{NumberIn(text, 0, 4),        NumberIn(text, 5, 2),  NumberIn(text, 8, 2),
                 NumberIn(text, 11, 2),       NumberIn(text, 14, 2), NumberIn(text, 17, 2),
                 NumberIn(text, kFraction, 3)};
  for (std::size_t end = text.size(); end < kFraction + 3; ++end) time.millisecond *= 10;
  return time;
}

Encoding EncodingFor(bool is_wide) { return is_wide ? Encoding::kWide : Encoding::kNarrow; }

}  // namespace

// Receives the pieces of a cell. The driver gets the whole buffer and ends text with a NUL.
template <class Unit>
struct Statement::Piece {
  static constexpr bool kIsText = !std::is_same_v<Unit, unsigned char>;
  static constexpr SQLSMALLINT kType = std::is_same_v<Unit, char16_t> ? SQL_C_WCHAR
                                       : std::is_same_v<Unit, char>   ? SQL_C_CHAR
                                                                      : SQL_C_BINARY;
  static constexpr std::size_t kRoom = kPieceBytes / sizeof(Unit) - (kIsText ? 1 : 0);

  explicit Piece(std::vector<char16_t>& memory) : units(reinterpret_cast<Unit*>(memory.data())) {
    units[0] = Unit{};
    if (kIsText) units[kRoom] = Unit{1};
  }

  // Returns true if more of the cell follows. The indicator comes from the driver and counts bytes.
  [[nodiscard]] bool HasMore(SQLRETURN result, SQLLEN indicator) const {
    if (indicator == SQL_NO_TOTAL) return result == SQL_SUCCESS_WITH_INFO;
    return indicator > static_cast<SQLLEN>(kRoom * sizeof(Unit));
  }

  // Returns how much of a piece, other than the last, is valid: drivers that split no character may
  // leave the end unused.
  [[nodiscard]] std::size_t FullLength() const {
    constexpr std::size_t kLongestCharacter = 4;
    if (!kIsText || units[kRoom] == Unit{}) return kRoom;
    for (std::size_t length = kRoom - 1; length > kRoom - kLongestCharacter; --length) {
      if (units[length] == Unit{}) return length;
    }
    return kRoom;
  }

  [[nodiscard]] std::size_t LastLength(SQLLEN indicator) const {
    if (indicator >= 0) return static_cast<std::size_t>(indicator) / sizeof(Unit);
    if (!kIsText || indicator != SQL_NO_TOTAL) return 0;
    return static_cast<std::size_t>(std::find(units, units + kRoom, Unit{}) - units);
  }

  Unit* units;
};

Statement::Statement(Connection& connection) : connection_(connection) {
  // Without a handle every call fails with a diagnostic.
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection.connection_, &statement_))) {
    statement_ = nullptr;
    return;
  }
  const std::uintptr_t seconds = connection.limits_.query_seconds;
  if (seconds == 0) return;
  SQLSetStmtAttr(statement_, SQL_ATTR_QUERY_TIMEOUT, reinterpret_cast<SQLPOINTER>(seconds), 0);
}

Statement::~Statement() {
  if (statement_ != nullptr) SQLFreeHandle(SQL_HANDLE_STMT, statement_);
}

template <class Call>
std::int16_t Statement::Run(Call call) {
  {
    const std::lock_guard lock(cancel_mutex_);
    if (is_cancelled_) return SQL_ERROR;
    is_running_ = true;
  }
  const SQLRETURN result = call();
  const std::lock_guard lock(cancel_mutex_);
  is_running_ = false;
  return result;
}

bool Statement::Execute(std::string_view sql, Diagnostics& diagnostics) {
  columns_.clear();
  auto text = DriverText::From(sql, EncodingFor(connection_.is_wide_), diagnostics);
  if (!text) return false;
  SQLFreeStmt(statement_, SQL_CLOSE);
  const SQLRETURN result = Run([&] { return text->Execute(statement_); });
  // A statement that finds no row to change is not a failure.
  if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA) return Failed(diagnostics);
  return Describe(diagnostics);
}

bool Statement::Execute(std::string_view sql, std::span<const Argument> arguments,
                        Diagnostics& diagnostics) {
  const Encoding encoding = EncodingFor(connection_.is_wide_);
  std::vector<DriverText> texts;
  texts.reserve(arguments.size());  // bound texts must not move
  bool done = true;
  SQLUSMALLINT number = 0;
  for (const Argument& argument : arguments) {
    if (argument) {
      auto text = DriverText::From(*argument, encoding, diagnostics);
      if (!text) break;
      texts.push_back(std::move(*text));
    }
    ++number;
    const SQLRETURN result =
        argument ? texts.back().Bind(statement_, number) : DriverText::BindNull(statement_, number);
    done = SQL_SUCCEEDED(result) || Failed(diagnostics);
    if (!done) break;
  }
  done = number == arguments.size() && done && Execute(sql, diagnostics);
  SQLFreeStmt(statement_, SQL_RESET_PARAMS);
  return done;
}

Step Statement::NextResult(Diagnostics& diagnostics) {
  columns_.clear();
  const SQLRETURN result = Run([&] { return SQLMoreResults(statement_); });
  if (result == SQL_NO_DATA) return Step::kEnd;
  if (SQL_SUCCEEDED(result) && Describe(diagnostics)) return Step::kNext;
  if (!SQL_SUCCEEDED(result)) Failed(diagnostics);
  return Step::kFailed;
}

bool Statement::Describe(Diagnostics& diagnostics) {
  SQLSMALLINT count = 0;
  if (!SQL_SUCCEEDED(SQLNumResultCols(statement_, &count))) return Failed(diagnostics);
  for (SQLSMALLINT i = 1; i <= count; ++i) {
    auto facts =
        DescribeColumn(statement_, static_cast<SQLUSMALLINT>(i), EncodingFor(connection_.is_wide_));
    if (!facts) return Failed(diagnostics);
    columns_.push_back(
        {std::move(facts->name), KindOf(facts->type), SizeOf(facts->size), facts->decimals});
  }
  // Where PostgreSQL's date fits none of its types, its driver fills in parts of the current one.
  reads_dates_as_text_ =
      std::ranges::any_of(columns_, IsDate) && connection_.Product() == "PostgreSQL";
  return true;
}

Step Statement::Next(Diagnostics& diagnostics) {
  const SQLRETURN result = Run([&] { return SQLFetch(statement_); });
  if (SQL_SUCCEEDED(result)) return Step::kNext;
  if (result == SQL_NO_DATA) return Step::kEnd;
  Failed(diagnostics);
  return Step::kFailed;
}

CellState Statement::ReadBoolean(std::size_t column, bool& value, Diagnostics& diagnostics) {
  unsigned char read = 0;
  const CellState state = ReadFixed(column, SQL_C_BIT, read, diagnostics);
  if (state == CellState::kValue) value = read != 0;
  return state;
}

CellState Statement::ReadInteger(std::size_t column, std::int64_t& value,
                                 Diagnostics& diagnostics) {
  return ReadFixed(column, SQL_C_SBIGINT, value, diagnostics);
}

CellState Statement::ReadDouble(std::size_t column, double& value, Diagnostics& diagnostics) {
  return ReadFixed(column, SQL_C_DOUBLE, value, diagnostics);
}

CellState Statement::ReadTimestamp(std::size_t column, Timestamp& value, Diagnostics& diagnostics) {
  if (reads_dates_as_text_) return ReadDateText(column, value, diagnostics);
  SQL_TIMESTAMP_STRUCT read{};
  const CellState state = ReadFixed(column, SQL_C_TYPE_TIMESTAMP, read, diagnostics);
  if (state == CellState::kValue) {
    constexpr std::int32_t kNanosecondsEach = 1'000'000;
    const auto millisecond = static_cast<std::int32_t>(read.fraction / kNanosecondsEach);
    value = {read.year,   read.month,  read.day,          read.hour,
             read.minute, read.second, millisecond % 1000};
  }
  return state;
}

CellState Statement::ReadDateText(std::size_t column, Timestamp& value, Diagnostics& diagnostics) {
  const CellState state = ReadText(column, date_, diagnostics);
  if (state != CellState::kValue) return state;
  const Timestamp read = TimestampIn(date_);
  const bool is_held = read.month != 0 && read.day != 0 && !date_.ends_with("BC");
  if (is_held) value = read;
  return is_held ? CellState::kValue : CellState::kNull;
}

CellState Statement::ReadText(std::size_t column, std::string& text, Diagnostics& diagnostics) {
  if (!connection_.is_wide_) return ReadPieces<char>(column, text, diagnostics);
  const CellState state = ReadPieces<char16_t>(column, wide_, diagnostics);
  if (state != CellState::kValue) return state;
  text.clear();
  platform::AppendNarrow(wide_, text);
  return state;
}

CellState Statement::ReadBytes(std::size_t column, std::vector<unsigned char>& bytes,
                               Diagnostics& diagnostics) {
  return ReadPieces<unsigned char>(column, bytes, diagnostics);
}

CellState Statement::ReadNothing(std::size_t column, Diagnostics& diagnostics) {
  unsigned char first = 0;  // the rest of the cell is left where it is
  return ReadFixed(column, SQL_C_BINARY, first, diagnostics);
}

template <class Value>
CellState Statement::ReadFixed(std::size_t column, std::int16_t type, Value& value,
                               Diagnostics& diagnostics) {
  Value read{};
  SQLLEN indicator = 0;
  const SQLRETURN result = SQLGetData(statement_, static_cast<SQLUSMALLINT>(column + 1), type,
                                      &read, sizeof read, &indicator);
  if (!SQL_SUCCEEDED(result)) return CellFailed(diagnostics);
  if (indicator == SQL_NULL_DATA) return CellState::kNull;
  value = read;
  return CellState::kValue;
}

template <class Unit, class Whole>
CellState Statement::ReadPieces(std::size_t column, Whole& whole, Diagnostics& diagnostics) {
  whole.clear();
  if (memory_.empty()) memory_.resize(kPieceBytes / sizeof(char16_t));
  while (true) {
    const Piece<Unit> piece(memory_);
    SQLLEN indicator = SQL_NO_TOTAL;
    const SQLRETURN result = SQLGetData(statement_, static_cast<SQLUSMALLINT>(column + 1),
                                        piece.kType, piece.units, kPieceBytes, &indicator);
    if (result == SQL_NO_DATA) return CellState::kValue;
    if (!SQL_SUCCEEDED(result)) return CellFailed(diagnostics);
    if (indicator == SQL_NULL_DATA) return CellState::kNull;
    const bool has_more = piece.HasMore(result, indicator);
    const std::size_t length = has_more ? piece.FullLength() : piece.LastLength(indicator);
    whole.insert(whole.end(), piece.units, piece.units + length);
    if (whole.size() * sizeof(Unit) > cell_bytes_) {
      const std::string most = std::to_string(cell_bytes_);
      diagnostics.push_back(
          {kCellTooLong, 0, "a cell takes more than the limit of " + most + " bytes"});
      return CellState::kFailed;
    }
    if (!has_more) return CellState::kValue;
  }
}

CellState Statement::CellFailed(Diagnostics& diagnostics) const {
  const std::size_t before = diagnostics.size();
  Failed(diagnostics);
  const std::string& state = diagnostics[before].state;
  // Data exceptions, and conversions that the driver does not support.
  const bool is_misfit = state.starts_with("22") || state == "07006";
  return is_misfit ? CellState::kMisfit : CellState::kFailed;
}

bool Statement::Failed(Diagnostics& diagnostics) const {
  if (is_cancelled_) diagnostics.push_back({kCancelled, 0, "the statement was cancelled"});
  Collect(SQL_HANDLE_STMT, statement_, EncodingFor(connection_.is_wide_), diagnostics);
  return false;
}

void Statement::Cancel() {
  const std::lock_guard lock(cancel_mutex_);
  is_cancelled_ = true;
  if (is_running_) SQLCancel(statement_);
}

}  // namespace qv::odbc
