#include "ColumnFiller.h"

#include <algorithm>
#include <limits>

#include "CellText.h"
#include "CellValue.h"
#include "framework/DecimalText.h"

namespace qv {

ColumnFiller::ColumnFiller(ResultTable& table, BinaryCells& binary) : binary_(binary) {
  sinks_.reserve(table.columns.size());
  for (Column& column : table.columns) sinks_.push_back(MakeSink(column));
}

ColumnFiller::Sink ColumnFiller::MakeSink(Column& column) {
  if (auto* const ints = std::get_if<IntCells>(&column.cells)) {
    return {column.type == kTypeBoolean ? Kind::kBoolean : Kind::kInteger, &column, ints};
  }
  if (auto* const doubles = std::get_if<DoubleCells>(&column.cells)) {
    return {Kind::kDouble, &column, doubles};
  }
  if (auto* const dates = std::get_if<DateCells>(&column.cells)) {
    return {Kind::kDate, &column, dates};
  }
  const Kind kind = column.type == kTypeLongVarBinary ? Kind::kBinary : Kind::kText;
  return {kind, &column, &std::get<TextCells>(column.cells)};
}

void ColumnFiller::AppendRow(const RowValues& values) {
  constexpr std::size_t kMaxLength = std::numeric_limits<std::int32_t>::max();
  for (std::size_t i = 0; i < sinks_.size(); ++i) {
    const std::size_t length = std::min(Append(sinks_[i], values.For(i)), kMaxLength);
    std::int32_t& longest = sinks_[i].column->display_length;
    longest = std::max(longest, static_cast<std::int32_t>(length));
  }
}

std::size_t ColumnFiller::Append(const Sink& sink, std::string_view text) {
  switch (sink.kind) {
    case Kind::kBoolean: {
      static_cast<IntCells*>(sink.cells)->push_back(ParseBoolean(text));
      return 1;
    }
    case Kind::kInteger: {
      const std::int32_t value = DecimalToInt32(text);
      static_cast<IntCells*>(sink.cells)->push_back(value);
      return static_cast<std::size_t>(DecimalLength(value));
    }
    case Kind::kDouble: {
      const double value = ParseDouble(text);
      static_cast<DoubleCells*>(sink.cells)->push_back(value);
      return static_cast<std::size_t>(FixedLength(value));
    }
    case Kind::kDate: {
      const DateValue value = ParseDate(text);
      static_cast<DateCells*>(sink.cells)->push_back(value.date);
      return static_cast<std::size_t>(value.display_length);
    }
    case Kind::kBinary: {
      const std::string path = binary_.Write(text);
      static_cast<TextCells*>(sink.cells)->push_back(path);
      return path.size();
    }
    case Kind::kText:
      break;
  }
  return AppendText(*static_cast<TextCells*>(sink.cells), text);
}

}  // namespace qv
