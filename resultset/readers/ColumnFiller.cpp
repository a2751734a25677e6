#include "ColumnFiller.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <variant>

#include "TextWindow.h"
#include "base/text/Numbers.h"
#include "resultset/CellValue.h"
#include "resultset/DateCell.h"

namespace qv {

static_assert(TextWindow::kSlack >= kValueSlack && TextWindow::kSlack >= kScanSlack);

ColumnFiller::ColumnFiller(std::span<Column> columns, const RowValues& values, BinaryCells& binary,
                           ResultBudget budget)
    : values_(values), row_bytes_((columns.size() + 7) / 8), budget_(budget) {
  sinks_.reserve(columns.size());
  for (Column& column : columns) sinks_.push_back(SinkFor(column, sinks_.size(), binary));
}

ColumnFiller::Sink ColumnFiller::SinkFor(Column& column, std::size_t index, BinaryCells& binary) {
  row_bytes_ += CellBytes(column.cells);
  void* const cells =
      std::visit([](auto& held) { return static_cast<void*>(&held); }, column.cells);
  const bool is_binary = column.type == kTypeLongVarBinary;
  has_binary_ |= is_binary;
  return {.append = AppenderFor(column),
          .cells = cells,
          .slot = values_.SlotOf(index),
          .longest = static_cast<std::size_t>(column.display_length),
          .column = &column,
          .holds_text = std::holds_alternative<TextCells>(column.cells),
          .binary = is_binary ? &binary : nullptr};
}

ColumnFiller::~ColumnFiller() {
  for (const Sink& sink : sinks_) {
    sink.column->display_length = text::SaturatedTo32Bits(sink.longest);
  }
}

// Returns what the texts take, before they are decoded, with the paths of files.
std::uint64_t ColumnFiller::TextBytes(const Sink& sink, const RowValues::InColumn& rows) {
  if (!sink.holds_text) return 0;
  const std::size_t path_bytes = sink.binary != nullptr ? sink.binary->MostPathBytes() : 0;
  std::uint64_t bytes = 0;
  for (std::size_t row = 0; row < rows.Rows(); ++row) {
    if (!rows[row].empty()) bytes += rows[row].size() + path_bytes;
  }
  return bytes;
}

std::uint64_t ColumnFiller::BytesOfRows() const {
  std::uint64_t bytes = values_.Rows() * std::uint64_t{row_bytes_};
  for (const Sink& sink : sinks_) bytes += TextBytes(sink, values_.InSlot(sink.slot));
  return bytes;
}

bool ColumnFiller::AppendRows() {
  const std::size_t rows = values_.Rows();
  if (rows == 0) return true;
  // Files are written in the order of the rows. Of too many rows, those that fit are appended.
  if (has_binary_ || !budget_.Take(BytesOfRows())) {
    std::size_t row = 0;
    while (row < rows && AppendRow(row)) ++row;
    return row == rows;
  }
  for (Sink& sink : sinks_) {
    const RowValues::InColumn values = values_.InSlot(sink.slot);
    std::uint64_t nulls = 0;
    for (std::size_t row = 0; row < rows; ++row) {
      nulls |= std::uint64_t{values[row].data() == nullptr} << row;
    }
    sink.column->nulls.AddRows(rows_, nulls);
    sink.append(sink, values);
  }
  rows_ += rows;
  return true;
}

bool ColumnFiller::AppendRow(std::size_t row) {
  if (!budget_.Take(row_bytes_)) return false;
  for (Sink& sink : sinks_) {
    const RowValues::InColumn values = values_.InSlot(sink.slot).OneRow(row);
    if (values[0].data() == nullptr) sink.column->nulls.Add(rows_);
    if (!budget_.Take(TextBytes(sink, values))) return false;
    sink.append(sink, values);
  }
  ++rows_;
  return true;
}

bool ColumnFiller::AppendRowsOf(const ColumnFiller& others) {
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
    return column.type == kTypeBoolean ? AppendBooleans : AppendIntegers;
  }
  if (std::holds_alternative<DoubleCells>(column.cells)) return AppendDoubles;
  if (std::holds_alternative<DateCells>(column.cells)) return AppendDates;
  return column.type == kTypeLongVarBinary ? AppendBinary : AppendPlainTexts;
}

void ColumnFiller::AppendBooleans(Sink& sink, const RowValues::InColumn& rows) {
  std::int64_t* const cells = static_cast<IntCells*>(sink.cells)->Extend(rows.Rows());
  for (std::size_t row = 0; row < rows.Rows(); ++row) cells[row] = ParseBoolean(rows[row]);
  sink.Measure(1);
}

// Of integers, the largest and the smallest have the longest texts.
void ColumnFiller::AppendIntegers(Sink& sink, const RowValues::InColumn& rows) {
  std::int64_t* const cells = static_cast<IntCells*>(sink.cells)->Extend(rows.Rows());
  std::int64_t least = 0;
  std::int64_t most = 0;
  for (std::size_t row = 0; row < rows.Rows(); ++row) {
    const std::int64_t value = ParseInteger(rows[row]);
    cells[row] = value;
    least = std::min(least, value);
    most = std::max(most, value);
  }
  if (least < 0) sink.Measure(DecimalLength(text::SaturatedTo32Bits(least)));
  sink.Measure(DecimalLength(text::SaturatedTo32Bits(most)));
}

// Of finite doubles, the same holds for those with and those without a sign.
void ColumnFiller::AppendDoubles(Sink& sink, const RowValues::InColumn& rows) {
  double* const cells = static_cast<DoubleCells*>(sink.cells)->Extend(rows.Rows());
  double most = -1.0;
  double most_signed = -1.0;
  for (std::size_t row = 0; row < rows.Rows(); ++row) {
    const double value = ParseDoubleInBuffer(rows[row]);
    cells[row] = value;
    if (!std::isfinite(value)) {
      sink.Measure(FixedLength(value));
    } else if (std::signbit(value)) {
      most_signed = std::max(most_signed, -value);
    } else {
      most = std::max(most, value);
    }
  }
  if (most >= 0.0) sink.Measure(FixedLength(most));
  if (most_signed >= 0.0) sink.Measure(FixedLength(-most_signed));
}

void ColumnFiller::AppendDates(Sink& sink, const RowValues::InColumn& rows) {
  DateCell* const cells = static_cast<DateCells*>(sink.cells)->Extend(rows.Rows());
  for (std::size_t row = 0; row < rows.Rows(); ++row) {
    const DateValue value = ParseDate(rows[row]);
    cells[row] = value.date;
    sink.Measure(value.display_length);
  }
}

void ColumnFiller::AppendBinary(Sink& sink, const RowValues::InColumn& rows) {
  for (std::size_t row = 0; row < rows.Rows(); ++row) {
    const std::string path = sink.binary->Write(rows[row]);
    static_cast<TextCells*>(sink.cells)->push_back(path);
    sink.longest = std::max(sink.longest, path.size());
  }
}

void ColumnFiller::AppendPlainTexts(Sink& sink, const RowValues::InColumn& rows) {
  std::size_t bytes = 0;
  for (std::size_t row = 0; row < rows.Rows(); ++row) bytes += rows[row].size();
  const auto put = [&](std::size_t row, char* to) {
    const std::size_t length = CopyText(rows[row], rows.MayHaveEntities(row), to);
    // As the platform's calls give it.
    if (length > sink.longest) {
      sink.longest = std::max(sink.longest, text::Trimmed({to, length}).size());
    }
    return length;
  };
  static_cast<TextCells*>(sink.cells)->AppendEach(rows.Rows(), bytes, put);
}

void ColumnFiller::ReserveAfter(std::uint64_t done, std::uint64_t total) {
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
