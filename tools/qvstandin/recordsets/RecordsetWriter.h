// Writes recordset files in both dialects.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "CellForm.h"
#include "ColumnFit.h"
#include "tools/qvstandin/common/ByteSink.h"
#include "tools/qvstandin/databases/Database.h"

namespace qv::standin {

// What the writers of both dialects share. The rows are streamed through one buffer.
//
// Clients find cells by fixed markers. So values contain the five characters that could end them as
// entities, and names contain none: blanks, control characters and ' " = / < > & become "_". A
// column without a name becomes "column<position>", and a duplicate name gets the suffix "_2",
// "_3", ... NUL bytes in texts are dropped. A row omits cells that are null.
//
// A column keeps its declared kind if that holds all values that came. Otherwise the head, which
// declares the kinds, is replaced at the end.
class RecordsetWriter : public RowSink {
 public:
  bool Begin(const std::vector<Column>& columns) override;
  bool Row(const std::vector<Cell>& cells) override;
  // Writes the end of the recordset and finishes the target. Returns false if that fails.
  [[nodiscard]] bool Finish();

  [[nodiscard]] std::int32_t RowCount() const { return row_count_; }

 protected:
  // The texts around the values.
  struct Layout {
    std::string head;
    std::string row_opening;
    std::string row_closing;
    std::string tail;
    BinaryForm binary;
    std::vector<std::string> cell_openings;  // one for each column, like cell_closings
    std::vector<std::string> cell_closings;
  };

  explicit RecordsetWriter(AnswerSink& target) : target_(target) {}

  [[nodiscard]] virtual Layout LayoutOf(const std::vector<Column>& columns,
                                        const std::vector<std::string>& names) const = 0;

 private:
  [[nodiscard]] bool Flush();
  // Declares the kinds that hold all values. Returns false if the head cannot be replaced.
  [[nodiscard]] bool FitColumns();

  AnswerSink& target_;
  std::string buffer_;
  Layout layout_;
  std::vector<Column> columns_;
  std::vector<ColumnFit> fits_;  // one for each column
  std::int32_t row_count_ = 0;
};

// Writes the rowset dialect: a schema, then one element per row whose attributes are the cells.
// Clients accept only a blank between attributes.
class RowsetWriter : public RecordsetWriter {
 public:
  // The text goes to `target`, which outlives this object.
  explicit RowsetWriter(AnswerSink& target) : RecordsetWriter(target) {}

 private:
  Layout LayoutOf(const std::vector<Column>& columns,
                  const std::vector<std::string>& names) const override;
};

// Writes the schema dialect: a schema, then one element per row whose children are the cells.
class SchemaWriter : public RecordsetWriter {
 public:
  // The text goes to `target`, which outlives this object.
  explicit SchemaWriter(AnswerSink& target) : RecordsetWriter(target) {}

 private:
  Layout LayoutOf(const std::vector<Column>& columns,
                  const std::vector<std::string>& names) const override;
};

}  // namespace qv::standin
