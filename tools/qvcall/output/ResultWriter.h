#pragma once

#include <iosfwd>

#include "qvnetcall/RvoDbRes.h"

namespace qv::tool {

enum class Format { kTable, kCsv, kJson };

// The writers below write the whole of `rows` and return false if writing to `out` failed.

// Writes a table for people: a header, a rule, then the rows. Columns are aligned by display width,
// numbers to the right. The result set is walked twice, the first time to measure, and never
// copied. A cell that is far wider than a screen is shown whole, but its column is widened only up
// to a limit.
[[nodiscard]] bool WriteTable(const CRvoDbRes& rows, std::ostream& out);

// Writes a header and the rows as comma-separated values. Cells are quoted as RFC 4180 says, lines
// end with a line feed, and bytes are not converted.
[[nodiscard]] bool WriteCsv(const CRvoDbRes& rows, std::ostream& out);

// Writes a JSON array with one object, and one line, per row. Every value is a string, because a
// result set does not tell the types of its columns. Invalid UTF-8 becomes U+FFFD. If several
// columns have the same name, the second is called "name_2" and so on.
[[nodiscard]] bool WriteJson(const CRvoDbRes& rows, std::ostream& out);

// Writes in the given format.
[[nodiscard]] inline bool WriteResult(const CRvoDbRes& rows, Format format, std::ostream& out) {
  switch (format) {
    case Format::kCsv:
      return WriteCsv(rows, out);
    case Format::kJson:
      return WriteJson(rows, out);
    case Format::kTable:
      break;
  }
  return WriteTable(rows, out);
}

}  // namespace qv::tool
