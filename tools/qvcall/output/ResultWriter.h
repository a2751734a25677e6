#pragma once

#include <iosfwd>

#include "qvnetcall/RvoDbRes.h"

namespace qv::tool {

enum class Format { kTable, kCsv, kJson };

// Writes a table for people: a header, a line below it, the rows; columns aligned by display width,
// columns of numbers to the right. The result is walked twice, once for the widths, and never
// copied. A cell that is far wider than a screen is shown whole, but does not widen its column
// beyond a limit. False when `out` took not everything.
[[nodiscard]] bool WriteTable(const CRvoDbRes& rows, std::ostream& out);

// Writes a header and the rows as comma-separated values, quoted as RFC 4180 has it, each line
// ended by a line feed; bytes as they are. False when `out` took not everything.
[[nodiscard]] bool WriteCsv(const CRvoDbRes& rows, std::ostream& out);

// Writes an array with one object per row and line. Every value is a string, since a result set
// does not tell its columns' types; invalid UTF-8 becomes U+FFFD. Of columns with one name, the
// second is called "name_2" and so on. False when `out` took not everything.
[[nodiscard]] bool WriteJson(const CRvoDbRes& rows, std::ostream& out);

// Writes a result set row by row. False when `out` took not everything.
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
