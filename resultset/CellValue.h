// From the text of a value to the value, as the recordset files write them.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "TextCells.h"
#include "qvnetcall/framework/OleDateTime.h"

namespace qv {

// 1 for "True" in any case, else 0.
[[nodiscard]] std::int32_t ParseBoolean(std::string_view text);

// The number that `text` starts with, whatever the locale; white space before it is skipped. 0.0
// when there is none, infinity when it is too large.
[[nodiscard]] double ParseDouble(std::string_view text);

struct DateValue {
  COleDateTime date;
  // The length of the date written without padding, "%d-%d-%d %d-%d-%d"; 0 when there is none.
  std::int32_t display_length = 0;
};

// Year, month, day, hour, minute, second.
using DateFields = std::array<std::int32_t, 6>;

// What no calendar has is 0.0.
[[nodiscard]] DateValue MakeDate(const DateFields& fields);

// A date and time at fixed places of a text of at least 19 characters. A shorter text, and what no
// calendar has, is 0.0.
[[nodiscard]] DateValue ParseDate(std::string_view text);

// How far ParseInteger and AppendText may look behind the text.
constexpr std::size_t kValueSlack = TextCells::kCopyStep;

// As DecimalToInt32.
[[nodiscard]] std::int32_t ParseInteger(std::string_view text);

// Appends a text without the white space at its ends and, when it may have some, with its entities
// decoded; returns its length.
std::size_t AppendText(TextCells& cells, std::string_view text, bool may_have_entities);

}  // namespace qv
