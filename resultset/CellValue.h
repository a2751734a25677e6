// Converts the texts of recordset files to values, and values to texts.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <string_view>

#include "Cells.h"
#include "DateCell.h"
#include "qvnetcall/framework/OleDateTime.h"
#include "qvnetcall/framework/String.h"

namespace qv {

// Returns 1 for "True" in any case, else 0.
[[nodiscard]] std::int32_t ParseBoolean(std::string_view text);

// Returns the number at the start of `text`, independently of the locale; leading white space is
// skipped. Returns 0.0 if there is no number, and infinity if it is too large.
[[nodiscard]] double ParseDouble(std::string_view text);

// How many bytes the next three functions may read after the text.
constexpr std::size_t kValueSlack = TextCells::kCopyStep;

// As ParseDouble.
[[nodiscard]] double ParseDoubleInBuffer(std::string_view text);

// As DecimalToInt64.
[[nodiscard]] std::int64_t ParseInteger(std::string_view text);

// Copies a text, with its entities decoded if it may have any, and up to kCopyStep bytes after it.
// Returns its length, which is not more than that of `text`.
[[nodiscard]] std::size_t CopyText(std::string_view text, bool may_have_entities, char* to);

// The text forms of values, and their lengths for display.

// As the platform's calls give them: "%d", "%f", and "%Y-%m-%d %H:%M:%S", which is empty for a date
// of exactly 0.0.
[[nodiscard]] CString CellText(std::int32_t value);
[[nodiscard]] CString CellText(double value);
[[nodiscard]] CString CellText(const COleDateTime& value);

// Integers with all digits, doubles as the shortest text that reads back as the same double, dates
// as DateCell has them, and text as it is.
[[nodiscard]] CString ExactText(std::int64_t value);
[[nodiscard]] CString ExactText(double value);
[[nodiscard]] inline CString ExactText(DateCell value) { return value.Text(); }
[[nodiscard]] inline CString ExactText(std::string_view text) { return CString(text); }

// Returns the length of "%d" of `value`.
[[nodiscard]] constexpr std::int32_t DecimalLength(std::int32_t value) {
  constexpr std::array<std::uint32_t, 10> kPowers = {
      0, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
  const bool negative = value < 0;
  const std::uint32_t size =
      negative ? 0 - static_cast<std::uint32_t>(value) : static_cast<std::uint32_t>(value);
  // The logarithm to base 10, computed from that to base 2, may be one too large; the power of ten
  // corrects it.
  const std::uint32_t guess = static_cast<std::uint32_t>(std::bit_width(size | 1)) * 1233 >> 12;
  return static_cast<std::int32_t>(guess) + (size >= kPowers[guess] ? 1 : 0) + (negative ? 1 : 0);
}
// Returns the length of "%f" of `value`.
[[nodiscard]] std::int32_t FixedLength(double value);

}  // namespace qv
