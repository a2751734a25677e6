// Writes an answer as a recordset in the schema dialect: a schema, then one element per row whose
// children are the cells.
#pragma once

#include "RecordsetWriter.h"

namespace qv::standin {

class SchemaWriter : public RecordsetWriter {
 public:
  // The text goes to `target`, which outlives this object.
  explicit SchemaWriter(ByteSink& target) : RecordsetWriter(target) {}

 private:
  Layout LayoutOf(const std::vector<Column>& columns,
                  const std::vector<std::string>& names) const override;
};

}  // namespace qv::standin
