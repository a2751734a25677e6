#include "CursorReader.h"

#include <algorithm>
#include <utility>

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

void AppendNeutral(Cells& cells, std::size_t count) {
  const auto append = [count](auto& held) {
    for (std::size_t i = 0; i < count; ++i) held.push_back({});
  };
  std::visit(append, cells);
}

}  // namespace

CursorReader::CursorReader(odbc::Statement& statement, const tagTEMPFILEINFO& files,
                           odbc::Diagnostics& diagnostics)
    : statement_(statement), diagnostics_(diagnostics) {
  if (files.path[0] != '\0') files_.emplace(files);
  for (const odbc::Column& column : statement.Columns()) targets_.push_back(TargetFor(column));
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

bool CursorReader::AppendRow() {
  for (std::size_t i = 0; i < targets_.size(); ++i) {
    Target& target = targets_[i];
    const auto length = (this->*target.append)(i, target.column.cells);
    if (!length) return false;
    target.longest = std::max(target.longest, *length);
    // Misfits are not failures, and there may be many diagnostics of them.
    diagnostics_.clear();
  }
  return true;
}

void CursorReader::MoveTo(ResultTable& table) {
  for (Column& column : table.Columns()) {
    column.cells = CellsFor(column.type);
    AppendNeutral(column.cells, rows_);
  }
  for (Target& target : targets_) {
    target.column.display_length = text::SaturatedTo32Bits(target.longest);
    table.AddColumn(std::move(target.column));
  }
  targets_.clear();
}

std::optional<std::size_t> CursorReader::AppendBoolean(std::size_t index, Cells& cells) {
  bool value = false;
  const CellState state = statement_.ReadBoolean(index, value, diagnostics_);
  if (state == CellState::kFailed) return std::nullopt;
  if (state == CellState::kMisfit) {
    const std::string_view text = MisfitText(index);
    value = ParseBoolean(text) != 0 || text::DecimalToInt32(text) != 0;
  }
  std::get<IntCells>(cells).push_back(value ? 1 : 0);
  return 1;
}

std::optional<std::size_t> CursorReader::AppendInteger(std::size_t index, Cells& cells) {
  std::int64_t value = 0;
  const CellState state = statement_.ReadInteger(index, value, diagnostics_);
  if (state == CellState::kFailed) return std::nullopt;
  if (state == CellState::kMisfit) value = text::DecimalToInt32(MisfitText(index));
  const std::int32_t held = text::SaturatedTo32Bits(value);
  std::get<IntCells>(cells).push_back(held);
  return static_cast<std::size_t>(DecimalLength(held));
}

std::optional<std::size_t> CursorReader::AppendDouble(std::size_t index, Cells& cells) {
  double value = 0.0;
  const CellState state = statement_.ReadDouble(index, value, diagnostics_);
  if (state == CellState::kFailed) return std::nullopt;
  if (state == CellState::kMisfit) value = ParseDouble(MisfitText(index));
  std::get<DoubleCells>(cells).push_back(value);
  return static_cast<std::size_t>(FixedLength(value));
}

std::optional<std::size_t> CursorReader::AppendDate(std::size_t index, Cells& cells) {
  odbc::Timestamp time;
  DateValue value;
  const CellState state = statement_.ReadTimestamp(index, time, diagnostics_);
  if (state == CellState::kFailed) return std::nullopt;
  if (state == CellState::kMisfit) value = ParseDate(MisfitText(index));
  if (state == CellState::kValue) {
    value = MakeDate({time.year, time.month, time.day, time.hour, time.minute, time.second});
  }
  std::get<DateCells>(cells).push_back(value.date);
  return static_cast<std::size_t>(value.display_length);
}

std::optional<std::size_t> CursorReader::AppendPlainText(std::size_t index, Cells& cells) {
  const CellState state = statement_.ReadText(index, text_, diagnostics_);
  if (state == CellState::kFailed) return std::nullopt;
  if (state != CellState::kValue) text_.clear();
  return AppendText(std::get<TextCells>(cells), PaddedText(), /*may_have_entities=*/false);
}

std::optional<std::size_t> CursorReader::AppendBinary(std::size_t index, Cells& cells) {
  bytes_.clear();
  std::string path;
  if (files_) {
    const CellState state = statement_.ReadBytes(index, bytes_, diagnostics_);
    if (state == CellState::kFailed) return std::nullopt;
    if (state == CellState::kValue && !bytes_.empty()) path = files_->WriteBytes(bytes_);
  }
  std::get<TextCells>(cells).push_back(path);
  return path.size();
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
