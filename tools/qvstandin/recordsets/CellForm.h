// The texts of cells in recordset files.
#pragma once

#include <string>
#include <string_view>

#include "tools/qvstandin/databases/Database.h"

namespace qv::standin {

enum class BinaryForm {
  kHex,  // lower-case digits
  kBase64,
};

// Appends the text of a cell in a column of this kind, with < > ' & " as entities: integers with
// all digits, doubles as the shortest text that reads back as the same double, dates with what they
// have of a second's fraction. What is not of the kind is appended as it is. Returns false and
// appends nothing if the cell is null.
[[nodiscard]] bool AppendCellText(ColumnKind kind, BinaryForm binary, const Cell& cell,
                                  std::string& out);

// Return whether AppendCellText() writes the cell's value in the form of dates or truth values.
[[nodiscard]] bool IsDate(const Cell& cell);
[[nodiscard]] bool IsTruthValue(const Cell& cell);

}  // namespace qv::standin
