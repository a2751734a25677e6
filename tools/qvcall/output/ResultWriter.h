// Result sets as text. Cells come out exactly as the server sent them: numbers with all digits,
// and null apart from 0 and the empty text.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "qvnetcall/RvoDbRes.h"

namespace qv::tool {

enum class Format { kTable, kCsv, kJson };

struct Style {
  Format format = Format::kTable;
  std::optional<std::string> null_text{};  // nullopt: the usual one of the format
  bool keeps_controls = false;             // in csv
  bool is_for_spreadsheets = false;        // in csv
};

// The writers below write the whole of `rows` and return false if writing to `out` failed.

// Writes a table for people: a header, a rule, then the rows. Columns are aligned by display width,
// columns of numbers to the right. The result set is walked twice, the first time to measure, and
// never copied. A cell that is far wider than a screen is shown whole, but its column is widened
// only up to a limit.
[[nodiscard]] bool WriteTable(const CRvoDbRes& rows, const std::string& null_text,
                              std::ostream& out);

// Writes a header and the rows as comma-separated values. Cells are quoted as RFC 4180 says, lines
// end with a line feed, and bytes are not converted. Unless the style keeps them, control
// characters other than tabs and line breaks are spelt out. For spreadsheets, texts that one would
// take for a formula begin with an apostrophe. A null cell is the style's text for it without
// quotes; a text that would look like it is quoted. A cell that is empty and alone in its line is
// quoted even if it is null, because readers skip empty lines.
[[nodiscard]] bool WriteCsv(const CRvoDbRes& rows, const Style& style, std::ostream& out);

// Writes a JSON array with one object, and one line, per row. Numbers have all their digits, even
// those that some readers would round; a number that JSON does not know, such as an infinite one,
// is a string, as texts and dates are. Control characters are escaped, and invalid UTF-8 becomes
// U+FFFD. If several columns have the
// same name, the second is called "name_2" and so on.
[[nodiscard]] bool WriteJson(const CRvoDbRes& rows, std::ostream& out);

// Writes in the given style.
[[nodiscard]] inline bool WriteResult(const CRvoDbRes& rows, const Style& style,
                                      std::ostream& out) {
  switch (style.format) {
    case Format::kCsv:
      return WriteCsv(rows, style, out);
    case Format::kJson:
      return WriteJson(rows, out);
    case Format::kTable:
      break;
  }
  return WriteTable(rows, style.null_text.value_or("NULL"), out);
}

// Whether the cells of a column of that type (CRvoDbRes::GetFieldType) are numbers, however they
// are kept. Booleans count as numbers, because their text is 1 or 0.
constexpr bool IsNumber(int type) {
  switch (type) {
    case field_type::kSmallInt:
    case field_type::kInteger:
    case field_type::kBoolean:
    case field_type::kUnsignedTinyInt:
    case field_type::kBigInt:
    case field_type::kDouble:
    case field_type::kSingle:
    case field_type::kNumeric:
      return true;
    default:
      return false;
  }
}

}  // namespace qv::tool
