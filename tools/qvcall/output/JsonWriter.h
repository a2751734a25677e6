#pragma once

#include <iosfwd>

#include "qvnetcall/RvoDbRes.h"

namespace qv::tool {

// Writes an array with one object per row and line. Every value is a string, since a result set
// does not tell its columns' types; invalid UTF-8 becomes U+FFFD. Of columns with one name, the
// second is called "name_2" and so on. False when `out` took not everything.
[[nodiscard]] bool WriteJson(const CRvoDbRes& rows, std::ostream& out);

}  // namespace qv::tool
