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
// all digits, doubles as the shortest text that reads back as the same double, without an exponent
// in a column of decimals, dates with what they have of a second's fraction. A text in a column of
// numbers is appended as it is, and in one of truth values it counts as false unless it says true.
// Returns false and appends nothing if the cell is null, or if it is no date in a column of dates.
[[nodiscard]] bool AppendCellText(ColumnKind kind, BinaryForm binary, const Cell& cell,
                                  std::string& out);

}  // namespace qv::standin
