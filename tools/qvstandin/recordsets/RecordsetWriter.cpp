#include "RecordsetWriter.h"

#include <limits>

#include "ColumnNames.h"

namespace qv::standin {

namespace {

constexpr std::size_t kFlushAt = 64 * 1024;

}  // namespace

bool RecordsetWriter::Begin(const std::vector<Column>& columns) {
  layout_ = LayoutOf(columns, HarmlessNames(columns));
  for (const Column& column : columns) kinds_.push_back(column.kind);
  buffer_ = layout_.head;
  return Flush();
}

bool RecordsetWriter::Row(const std::vector<Cell>& cells) {
  buffer_ += layout_.row_opening;
  for (std::size_t i = 0; i < cells.size() && i < kinds_.size(); ++i) {
    const std::size_t before = buffer_.size();
    buffer_ += layout_.cell_openings[i];
    if (AppendCellText(kinds_[i], layout_.binary, cells[i], buffer_)) {
      buffer_ += layout_.cell_closings[i];
    } else {
      buffer_.resize(before);
    }
    if (buffer_.size() >= kFlushAt && !Flush()) return false;  // one row may be large
  }
  buffer_ += layout_.row_closing;
  if (row_count_ < std::numeric_limits<std::int32_t>::max()) ++row_count_;
  return true;
}

bool RecordsetWriter::Finish() {
  buffer_ += layout_.tail;
  return Flush() && target_.Finish();
}

bool RecordsetWriter::Flush() {
  const bool kept = target_.Write(buffer_);
  buffer_.clear();
  return kept;
}

}  // namespace qv::standin
