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
// in a column of decimals, dates with what they have of a second's fraction. A value that the
// column does not hold is appended as the text of what it is. Returns false and appends nothing if
// the cell is null.
[[nodiscard]] bool AppendCellText(ColumnKind kind, BinaryForm binary, const Cell& cell,
                                  std::string& out);

// Returns whether a cell in a column of truth values is none, or a cell in a column of dates is no
// date of the years 1 to 9999 with a time of the 24 hours or none. A null is no misfit.
[[nodiscard]] bool IsMisfit(ColumnKind kind, const Cell& cell);

}  // namespace qv::standin
