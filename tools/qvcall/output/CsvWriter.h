#pragma once

#include <iosfwd>

#include "qvnetcall/RvoDbRes.h"

namespace qv::tool {

// Writes a header and the rows as comma-separated values, quoted as RFC 4180 has it, each line
// ended by a line feed; bytes as they are. False when `out` took not everything.
[[nodiscard]] bool WriteCsv(const CRvoDbRes& rows, std::ostream& out);

}  // namespace qv::tool
