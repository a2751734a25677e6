// Writes an answer as a recordset in the rowset dialect: a schema, then one element per row whose
// attributes are the cells.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ByteSink.h"
#include "Database.h"

namespace qv {

// Streams: what it holds is one buffer, whatever the number of rows.
//
// Clients read the dialect by fixed markers, with a blank between attributes; so a value carries
// the five characters that could end it as entities, and a name none that could end it at all:
// blanks, control characters and ' " = / < > & become "_", a column without a name is
// "column<position>", and a name that stands already gets "_2", "_3", ... behind it. NUL bytes in
// texts are dropped. A cell that is null, or a date that is none, is left out of its row.
class RowsetWriter : public RowSink {
 public:
  // The text goes to `target`, which outlives this object.
  explicit RowsetWriter(ByteSink& target) : target_(target) {}

  bool Begin(const std::vector<Column>& columns) override;
  bool Row(const std::vector<Cell>& cells) override;
  // Writes the end and finishes the target.
  [[nodiscard]] bool Finish();

  [[nodiscard]] std::int32_t RowCount() const { return row_count_; }

 private:
  void AppendColumn(const Column& column, const std::string& name, std::size_t number);
  [[nodiscard]] bool Flush();

  ByteSink& target_;
  std::string buffer_;
  std::vector<ColumnKind> kinds_;
  std::vector<std::string> openings_;  // " name='" of each column
  std::int32_t row_count_ = 0;
};

}  // namespace qv
