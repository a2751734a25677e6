#pragma once

#include <iosfwd>

#include "qvnetcall/RvoDbRes.h"

namespace qv::tool {

// Writes a table for people: a header, a line below it, the rows; columns aligned by display width,
// columns of numbers to the right. The result is walked twice, once for the widths, and never
// copied. A cell that is far wider than a screen is shown whole, but does not widen its column
// beyond a limit. False when `out` took not everything.
[[nodiscard]] bool WriteTable(const CRvoDbRes& rows, std::ostream& out);

}  // namespace qv::tool
