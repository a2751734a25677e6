// Recordset files, in both dialects.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/qvstandin/common/ByteSink.h"
#include "tools/qvstandin/databases/Database.h"

namespace qv::standin {

enum class BinaryForm {
  kHex,  // lower-case digits
  kBase64,
};

// Appends the cell as a column of that kind shows it, with < > ' & " as entities. False, and
// nothing appended, when the cell has no text: null, or a date that is none.
[[nodiscard]] bool AppendCellText(ColumnKind kind, BinaryForm binary, const Cell& cell,
                                  std::string& out);

// What the writers of both dialects share.
//
// Streams: what it holds is one buffer, whatever the number of rows.
//
// Clients read both dialects by fixed markers; so a value carries the five characters that could
// end it as entities, and a name none that could end it at all: blanks, control characters and
// ' " = / < > & become "_", a column without a name is "column<position>", and a name that stands
// already gets "_2", "_3", ... behind it. NUL bytes in texts are dropped. A cell that is null, or a
// date that is none, is left out of its row.
class RecordsetWriter : public RowSink {
 public:
  bool Begin(const std::vector<Column>& columns) override;
  bool Row(const std::vector<Cell>& cells) override;
  // Writes the end and finishes the target.
  [[nodiscard]] bool Finish();

  [[nodiscard]] std::int32_t RowCount() const { return row_count_; }

 protected:
  // What stands around the values.
  struct Layout {
    std::string head;
    std::string row_opening;
    std::string row_closing;
    std::string tail;
    BinaryForm binary;
    std::vector<std::string> cell_openings;  // one for each column, as are the closings
    std::vector<std::string> cell_closings;
  };

  explicit RecordsetWriter(ByteSink& target) : target_(target) {}

  [[nodiscard]] virtual Layout LayoutOf(const std::vector<Column>& columns,
                                        const std::vector<std::string>& names) const = 0;

 private:
  [[nodiscard]] bool Flush();

  ByteSink& target_;
  std::string buffer_;
  Layout layout_;
  std::vector<ColumnKind> kinds_;
  std::int32_t row_count_ = 0;
};

// Writes an answer as a recordset in the rowset dialect: a schema, then one element per row whose
// attributes are the cells. Only a blank may separate attributes here.
class RowsetWriter : public RecordsetWriter {
 public:
  // The text goes to `target`, which outlives this object.
  explicit RowsetWriter(ByteSink& target) : RecordsetWriter(target) {}

 private:
  Layout LayoutOf(const std::vector<Column>& columns,
                  const std::vector<std::string>& names) const override;
};

// Writes an answer as a recordset in the schema dialect: a schema, then one element per row whose
// children are the cells.
class SchemaWriter : public RecordsetWriter {
 public:
  // The text goes to `target`, which outlives this object.
  explicit SchemaWriter(ByteSink& target) : RecordsetWriter(target) {}

 private:
  Layout LayoutOf(const std::vector<Column>& columns,
                  const std::vector<std::string>& names) const override;
};

}  // namespace qv::standin
