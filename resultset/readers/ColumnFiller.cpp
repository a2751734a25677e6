#include "ColumnFiller.h"

#include <algorithm>
#include <type_traits>
#include <variant>

#include "FileText.h"
#include "base/text/Numbers.h"
#include "resultset/CellValue.h"
#include "resultset/DateCell.h"

namespace qv {

static_assert(FileText::kSlack >= kValueSlack && FileText::kSlack >= kScanSlack);

ColumnFiller::ColumnFiller(std::span<Column> columns, const RowValues& values, BinaryCells& binary,
                           ResultBudget budget)
    : values_(values), row_{binary, false}, row_bytes_((columns.size() + 7) / 8), budget_(budget) {
  sinks_.reserve(columns.size());
  for (Column& column : columns) sinks_.push_back(SinkFor(column, sinks_.size()));
}

ColumnFiller::Sink ColumnFiller::SinkFor(Column& column, std::size_t index) {
  row_bytes_ += CellBytes(column.cells);
  void* const cells =
      std::visit([](auto& held) { return static_cast<void*>(&held); }, column.cells);
  const bool is_binary = column.type == kTypeLongVarBinary;
  return {.append = AppenderFor(column),
          .cells = cells,
          .slot = values_.SlotOf(index),
          .longest = static_cast<std::size_t>(column.display_length),
          .column = &column,
          .holds_text = std::holds_alternative<TextCells>(column.cells),
          .path_bytes = is_binary ? row_.binary.MostPathBytes() : 0};
}

ColumnFiller::~ColumnFiller() {
  for (const Sink& sink : sinks_) {
    sink.column->display_length = text::SaturatedTo32Bits(sink.longest);
  }
}

bool ColumnFiller::AppendRow(bool may_have_entities) {
  row_.may_have_entities = may_have_entities;
  if (!budget_.Take(row_bytes_)) return false;
  for (Sink& sink : sinks_) {
    const std::string_view text = values_.InSlot(sink.slot);
    if (text.data() == nullptr) sink.column->nulls.Add(rows_);
    const bool takes_text = sink.holds_text && !text.empty();
    if (takes_text && !budget_.Take(text.size() + sink.path_bytes)) return false;
    const std::size_t length = sink.append(sink.cells, text, row_);
    sink.longest = std::max(sink.longest, length);
  }
  ++rows_;
  return true;
}

bool ColumnFiller::AppendRows(const ColumnFiller& others) {
  if (!budget_.Take(others.budget_.Taken())) return false;
  for (std::size_t i = 0; i < sinks_.size(); ++i) {
    Column& column = *sinks_[i].column;
    const Column& other = *others.sinks_[i].column;
    const auto append = [&](auto& cells) {
      cells.Append(std::get<std::remove_reference_t<decltype(cells)>>(other.cells));
    };
    std::visit(append, column.cells);
    column.nulls.Append(other.nulls, rows_);
    sinks_[i].longest = std::max(sinks_[i].longest, others.sinks_[i].longest);
  }
  rows_ += others.rows_;
  return true;
}

void ColumnFiller::Clear() {
  for (Sink& sink : sinks_) {
    std::visit([](auto& cells) { cells.Shrink(0); }, sink.column->cells);
    sink.column->nulls.Clear();
    sink.longest = 0;
  }
  rows_ = 0;
  budget_ = ResultBudget(budget_.Limit());
}

ColumnFiller::Append ColumnFiller::AppenderFor(const Column& column) {
  if (std::holds_alternative<IntCells>(column.cells)) {
    return column.type == kTypeBoolean ? AppendBoolean : AppendInteger;
  }
  if (std::holds_alternative<DoubleCells>(column.cells)) return AppendDouble;
  if (std::holds_alternative<DateCells>(column.cells)) return AppendDate;
  return column.type == kTypeLongVarBinary ? AppendBinary : AppendPlainText;
}

std::size_t ColumnFiller::AppendBoolean(void* cells, std::string_view text, Row&) {
  static_cast<IntCells*>(cells)->push_back(ParseBoolean(text));
  return 1;
}

std::size_t ColumnFiller::AppendInteger(void* cells, std::string_view text, Row&) {
  const std::int64_t value = ParseInteger(text);
  static_cast<IntCells*>(cells)->push_back(value);
  return static_cast<std::size_t>(DecimalLength(text::SaturatedTo32Bits(value)));
}

std::size_t ColumnFiller::AppendDouble(void* cells, std::string_view text, Row&) {
  const double value = ParseDouble(text);
  static_cast<DoubleCells*>(cells)->push_back(value);
  return static_cast<std::size_t>(FixedLength(value));
}

std::size_t ColumnFiller::AppendDate(void* cells, std::string_view text, Row&) {
  const DateValue value = ParseDate(text);
  static_cast<DateCells*>(cells)->push_back(value.date);
  return static_cast<std::size_t>(value.display_length);
}

std::size_t ColumnFiller::AppendBinary(void* cells, std::string_view text, Row& row) {
  const std::string path = row.binary.Write(text);
  static_cast<TextCells*>(cells)->push_back(path);
  return path.size();
}

std::size_t ColumnFiller::AppendPlainText(void* cells, std::string_view text, Row& row) {
  return AppendText(*static_cast<TextCells*>(cells), text, row.may_have_entities);
}

void ColumnFiller::ReserveAfter(std::size_t done, std::size_t total) {
  // Assumes that the remaining rows resemble the ones before, plus a margin. An estimate of many
  // times the file's size is not used; the cells then grow as needed.
  constexpr double kMargin = 1.03;
  constexpr double kMostPerByte = 4.0;
  has_reserved_ = true;
  const double factor = kMargin * static_cast<double>(total) / static_cast<double>(done);
  double bytes = 0;
  const auto add_bytes = [&](const auto& cells) { bytes += static_cast<double>(cells.Bytes()); };
  for (const Sink& sink : sinks_) std::visit(add_bytes, sink.column->cells);
  if (bytes * factor > kMostPerByte * static_cast<double>(total)) return;
  if (bytes * factor > static_cast<double>(budget_.Limit())) return;
  const auto reserve = [&](auto& cells) { cells.ReserveTimes(factor); };
  for (const Sink& sink : sinks_) std::visit(reserve, sink.column->cells);
}

}  // namespace qv
