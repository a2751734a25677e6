// Converts the texts of recordset files to values.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "TextCells.h"
#include "qvnetcall/framework/OleDateTime.h"

namespace qv {

// Returns 1 for "True" in any case, else 0.
[[nodiscard]] std::int32_t ParseBoolean(std::string_view text);

// Returns the number at the start of `text`, independently of the locale; leading white space is
// skipped. Returns 0.0 if there is no number, and infinity if it is too large.
[[nodiscard]] double ParseDouble(std::string_view text);

struct DateValue {
  COleDateTime date;
  // The length of the date without padding, "%d-%d-%d %d-%d-%d"; 0 if there is none.
  std::int32_t display_length = 0;
};

// Year, month, day, hour, minute, second.
using DateFields = std::array<std::int32_t, 6>;

// Returns 0.0 for a date that does not exist.
[[nodiscard]] DateValue MakeDate(const DateFields& fields);

// Parses a date and time at fixed positions of a text of at least 19 characters. Returns 0.0 for a
// shorter text and for a date that does not exist.
[[nodiscard]] DateValue ParseDate(std::string_view text);

// How many bytes ParseInteger and AppendText may read after the text.
constexpr std::size_t kValueSlack = TextCells::kCopyStep;

// As DecimalToInt32.
[[nodiscard]] std::int32_t ParseInteger(std::string_view text);

// Appends a text without leading and trailing white space and, if it may have entities, with these
// decoded. Returns the length that was appended.
std::size_t AppendText(TextCells& cells, std::string_view text, bool may_have_entities);

}  // namespace qv
