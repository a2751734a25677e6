// The text form of one cell in a recordset file.
#pragma once

#include <string>

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

}  // namespace qv::standin
