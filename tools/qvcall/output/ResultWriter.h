#pragma once

#include <iosfwd>

#include "qvnetcall/RvoDbRes.h"

namespace qv::tool {

enum class Format { kTable, kCsv, kJson };

// Writes a result set row by row. False when `out` took not everything.
[[nodiscard]] bool WriteResult(const CRvoDbRes& rows, Format format, std::ostream& out);

}  // namespace qv::tool
