// The text forms of values, and their lengths for display.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <string_view>

#include "qvnetcall/framework/OleDateTime.h"
#include "qvnetcall/framework/String.h"

namespace qv {

// "%d", "%f", "%Y-%m-%d %H:%M:%S" (empty for a date of exactly 0.0), and text as it is.
[[nodiscard]] CString CellText(std::int32_t value);
[[nodiscard]] CString CellText(double value);
[[nodiscard]] CString CellText(const COleDateTime& value);
[[nodiscard]] inline CString CellText(std::string_view text) { return CString(text); }

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
