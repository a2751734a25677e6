// Writes an answer as a recordset in the rowset dialect: a schema, then one element per row whose
// attributes are the cells.
#pragma once

#include "RecordsetWriter.h"

namespace qv::standin {

// Only a blank may separate attributes here.
class RowsetWriter : public RecordsetWriter {
 public:
  // The text goes to `target`, which outlives this object.
  explicit RowsetWriter(ByteSink& target) : RecordsetWriter(target) {}

 private:
  Layout LayoutOf(const std::vector<Column>& columns,
                  const std::vector<std::string>& names) const override;
};

}  // namespace qv::standin
