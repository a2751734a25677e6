// The one way from decimal text to 32-bit numbers.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

namespace qv {

// White space of texts, whatever the locale.
constexpr bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

constexpr std::uint32_t Digit(char c) { return static_cast<std::uint32_t>(c - '0'); }
constexpr bool IsDigit(char c) { return Digit(c) < 10; }

// The number that `text` starts with: leading white space is skipped, a sign and digits are read,
// the first other character stops. 0 when there is none; the nearest limit when 32 bits do not hold
// it.
constexpr std::int32_t DecimalToInt32(std::string_view text) {
  const char* p = text.data();
  const char* const end = p + text.size();
  while (p != end && IsSpace(*p)) ++p;
  const bool negative = p != end && *p == '-';
  if (p != end && (*p == '-' || *p == '+')) ++p;
  // Nine digits always fit; those behind them may not.
  constexpr int kSafeDigits = 9;
  std::uint32_t safe = 0;
  for (int i = 0; i < kSafeDigits && p != end && IsDigit(*p); ++i, ++p)
    safe = safe * 10 + Digit(*p);
  const std::int64_t limit = std::numeric_limits<std::int32_t>::max() + std::int64_t{negative};
  std::int64_t value = safe;
  for (; p != end && IsDigit(*p); ++p) value = std::min(value * 10 + Digit(*p), limit);
  return static_cast<std::int32_t>(negative ? -value : value);
}

}  // namespace qv
