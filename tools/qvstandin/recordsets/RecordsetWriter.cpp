#include "RecordsetWriter.h"

#include <algorithm>
#include <limits>
#include <set>
#include <string_view>

#include "base/text/Letters.h"

namespace qv::standin {

namespace {

constexpr std::size_t kFlushAt = std::size_t{64} << 10;

constexpr std::string_view kHarmful = " '\"=/<>&";

bool IsHarmful(char ch) {
  return text::IsControl(ch) || kHarmful.find(ch) != std::string_view::npos;
}

// Returns one name for each column, in order. They are unique and not empty.
std::vector<std::string> HarmlessNames(const std::vector<Column>& columns) {
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (const Column& column : columns) {
    std::string name = column.name;
    std::ranges::replace_if(name, IsHarmful, '_');
    if (name.empty()) name = "column" + std::to_string(names.size() + 1);
    std::string candidate = name;
    for (int copy = 2; !taken.insert(candidate).second; ++copy) {
      candidate = name + "_" + std::to_string(copy);
    }
    names.push_back(candidate);
  }
  return names;
}

}  // namespace

bool RecordsetWriter::Begin(const std::vector<Column>& columns) {
  columns_ = columns;
  layout_ = LayoutOf(columns_, HarmlessNames(columns_));
  for (const Column& column : columns_) fits_.emplace_back(column.kind);
  return target_.WriteHead(layout_.head);
}

bool RecordsetWriter::Row(const std::vector<Cell>& cells) {
  buffer_ += layout_.row_opening;
  for (std::size_t i = 0; i < cells.size() && i < columns_.size(); ++i) {
    const std::size_t before = buffer_.size();
    buffer_ += layout_.cell_openings[i];
    fits_[i].Add(cells[i]);
    if (AppendCellText(columns_[i].kind, layout_.binary, cells[i], buffer_)) {
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
  return Flush() && FitColumns() && target_.Finish();
}

bool RecordsetWriter::FitColumns() {
  bool is_changed = false;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const ColumnKind fitted = fits_[i].Fitted();
    if (fitted == columns_[i].kind) continue;
    is_changed = true;
    columns_[i].kind = fitted;
    columns_[i].length = 0;
  }
  return !is_changed || target_.ReplaceHead(LayoutOf(columns_, HarmlessNames(columns_)).head);
}

bool RecordsetWriter::Flush() {
  const bool kept = target_.Write(buffer_);
  buffer_.clear();
  return kept;
}

}  // namespace qv::standin
