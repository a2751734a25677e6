#include "CursorReader.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/text/Letters.h"
#include "base/text/Numbers.h"
#include "resultset/CellValue.h"

namespace qv {

namespace {

using odbc::CellState;
using odbc::ColumnKind;
using odbc::Step;

std::uint8_t TypeOf(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::kBit:
      return kTypeBoolean;
    case ColumnKind::kTinyInt:
      return kTypeUnsignedTinyInt;
    case ColumnKind::kSmallInt:
      return kTypeSmallInt;
    case ColumnKind::kInteger:
      return kTypeInteger;
    case ColumnKind::kBigInt:
      return kTypeBigInt;
    case ColumnKind::kReal:
      return kTypeSingle;
    case ColumnKind::kDouble:
      return kTypeDouble;
    case ColumnKind::kDecimal:
      return kTypeNumeric;
    case ColumnKind::kChar:
    case ColumnKind::kWideChar:
      return kTypeChar;
    case ColumnKind::kLongVarChar:
    case ColumnKind::kLongWideVarChar:
      return kTypeLongVarChar;
    case ColumnKind::kWideVarChar:
      return kTypeVarWChar;
    case ColumnKind::kBinary:
      return kTypeLongVarBinary;
    case ColumnKind::kDate:
      return kTypeDate;
    case ColumnKind::kTimestamp:
      return kTypeTimeStamp;
    case ColumnKind::kVarChar:
    case ColumnKind::kOther:
      return kTypeVarChar;
  }
  return kTypeVarChar;
}

void AppendNulls(Column& column, std::size_t count) {
  const auto append = [&](auto& held) {
    for (std::size_t row = 0; row < count; ++row) {
      held.push_back({});
      column.nulls.Add(row);
    }
  };
  std::visit(append, column.cells);
}

}  // namespace

CursorReader::CursorReader(odbc::Statement& statement, const tagTEMPFILEINFO& files,
                           odbc::Diagnostics& diagnostics)
    : statement_(statement), diagnostics_(diagnostics) {
  if (files.path[0] != '\0') files_.emplace(files);
  // Without this, one cell could take more than all are allowed before it is counted.
  statement.LimitCells(static_cast<std::size_t>(
      std::min<std::uint64_t>(budget_.Limit(), std::numeric_limits<std::size_t>::max())));
  for (const odbc::Column& column : statement.Columns()) {
    targets_.push_back(TargetFor(column));
    row_bytes_ += CellBytes(targets_.back().column.cells);
  }
  row_bytes_ += (targets_.size() + 7) / 8;
}

CursorReader::~CursorReader() {
  for (const Target& target : targets_) RemoveBinaryFiles(target.column);
}

CursorReader::Target CursorReader::TargetFor(const odbc::Column& from) {
  Column column;
  column.name = from.name;
  column.type = TypeOf(from.kind);
  column.declared_length = text::SaturatedTo32Bits(from.size);
  column.cells = CellsFor(column.type);
  const Append append = AppenderFor(column);
  return {append, std::move(column)};
}

CursorReader::Append CursorReader::AppenderFor(const Column& column) {
  if (column.type == kTypeBoolean) return &CursorReader::AppendBoolean;
  if (column.type == kTypeLongVarBinary) return &CursorReader::AppendBinary;
  if (std::holds_alternative<IntCells>(column.cells)) return &CursorReader::AppendInteger;
  if (std::holds_alternative<DoubleCells>(column.cells)) return &CursorReader::AppendDouble;
  if (std::holds_alternative<DateCells>(column.cells)) return &CursorReader::AppendDate;
  return &CursorReader::AppendPlainText;
}

bool CursorReader::Read() {
  while (true) {
    const Step step = statement_.Next(diagnostics_);
    if (step != Step::kNext) return step == Step::kEnd;
    if (!AppendRow()) return false;
    ++rows_;
  }
}

bool CursorReader::Take(std::size_t bytes) {
  if (budget_.Take(bytes)) return true;
  diagnostics_.push_back({odbc::kResultTooLarge, 0, BeyondLimitText(budget_.Limit())});
  return false;
}

bool CursorReader::AppendRow() {
  if (!Take(row_bytes_)) return false;
  for (std::size_t i = 0; i < targets_.size(); ++i) {
    Target& target = targets_[i];
    const auto [state, length] = (this->*target.append)(i, target.column.cells);
    if (state == CellState::kFailed) return false;
    if (state == CellState::kNull) target.column.nulls.Add(rows_);
    target.longest = std::max(target.longest, length);
    // Misfits are not failures, and there may be many diagnostics of them.
    diagnostics_.clear();
  }
  return true;
}

void CursorReader::MoveTo(ResultTable& table) {
  for (Column& column : table.Columns()) {
    column.RebuildCells();
    AppendNulls(column, rows_);
  }
  for (Target& target : targets_) {
    target.column.display_length = text::SaturatedTo32Bits(target.longest);
    table.AddColumn(std::move(target.column));
  }
  targets_.clear();
}

CursorReader::Appended CursorReader::AppendBoolean(std::size_t index, Cells& cells) {
  bool value = false;
  const CellState state = statement_.ReadBoolean(index, value, diagnostics_);
  if (state == CellState::kFailed) return {state};
  if (state == CellState::kMisfit) {
    const std::string_view text = MisfitText(index);
    value = ParseBoolean(text) != 0 || text::DecimalToInt32(text) != 0;
  }
  std::get<IntCells>(cells).push_back(value ? 1 : 0);
  return {state, 1};
}

CursorReader::Appended CursorReader::AppendInteger(std::size_t index, Cells& cells) {
  std::int64_t value = 0;
  const CellState state = statement_.ReadInteger(index, value, diagnostics_);
  if (state == CellState::kFailed) return {state};
  if (state == CellState::kMisfit) value = text::DecimalToInt64(MisfitText(index));
  std::get<IntCells>(cells).push_back(value);
  return {state, static_cast<std::size_t>(DecimalLength(text::SaturatedTo32Bits(value)))};
}

CursorReader::Appended CursorReader::AppendDouble(std::size_t index, Cells& cells) {
  double value = 0.0;
  const CellState state = statement_.ReadDouble(index, value, diagnostics_);
  if (state == CellState::kFailed) return {state};
  if (state == CellState::kMisfit) value = ParseDouble(MisfitText(index));
  std::get<DoubleCells>(cells).push_back(value);
  return {state, static_cast<std::size_t>(FixedLength(value))};
}

CursorReader::Appended CursorReader::AppendDate(std::size_t index, Cells& cells) {
  odbc::Timestamp time;
  DateValue value;
  const CellState state = statement_.ReadTimestamp(index, time, diagnostics_);
  if (state == CellState::kFailed) return {state};
  if (state == CellState::kMisfit) value = ParseDate(MisfitText(index));
  if (state == CellState::kValue) {
    value = MakeDate({time.year, time.month, time.day, time.hour, time.minute, time.second},
                     time.millisecond);
  }
  std::get<DateCells>(cells).push_back(value.date);
  return {state, static_cast<std::size_t>(value.display_length)};
}

CursorReader::Appended CursorReader::AppendPlainText(std::size_t index, Cells& cells) {
  const CellState state = statement_.ReadText(index, text_, diagnostics_);
  if (state == CellState::kFailed) return {state};
  if (state != CellState::kValue) text_.clear();
  if (!Take(text_.size())) return {CellState::kFailed};
  std::get<TextCells>(cells).push_back(text_);
  return {state, text::Trimmed(text_).size()};
}

CursorReader::Appended CursorReader::AppendBinary(std::size_t index, Cells& cells) {
  bytes_.clear();
  const CellState state = files_ ? statement_.ReadBytes(index, bytes_, diagnostics_)
                                 : statement_.ReadNothing(index, diagnostics_);
  if (state == CellState::kFailed) return {state};
  if (files_ && !bytes_.empty() && !Take(files_->MostPathBytes())) return {CellState::kFailed};
  const bool has_bytes = state == CellState::kValue && !bytes_.empty();
  const std::string path = has_bytes ? files_->WriteBytes(bytes_) : std::string();
  std::get<TextCells>(cells).push_back(path);
  return {state, path.size()};
}

std::string_view CursorReader::MisfitText(std::size_t index) {
  odbc::Diagnostics ignored;
  if (statement_.ReadText(index, text_, ignored) != CellState::kValue) text_.clear();
  return PaddedText();
}

std::string_view CursorReader::PaddedText() {
  const std::size_t length = text_.size();
  text_.append(kValueSlack, '\0');
  return {text_.data(), length};
}

}  // namespace qv
