// Numbers in texts, decimal and hexadecimal, and numbers that must fit 32 bits.
#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/text/Letters.h"

namespace qv::text {

// Returns `number`, or the nearest limit of 32 bits if it lies beyond.
template <std::integral Number>
constexpr std::int32_t SaturatedTo32Bits(Number number) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::cmp_greater(number, Limits::max())) return Limits::max();
  if (std::cmp_less(number, Limits::min())) return Limits::min();
  return static_cast<std::int32_t>(number);
}

// Returns the value of a decimal digit; 10 or more for any other character.
constexpr std::uint32_t DigitValue(char c) { return static_cast<std::uint32_t>(c - '0'); }

// Returns the number that `text` starts with, as the platform reads numbers: leading white space is
// skipped, a sign and digits are read, and the first other character ends the number. Returns 0 if
// there is no number, and the nearest limit if 64 bits do not hold it.
constexpr std::int64_t DecimalToInt64(std::string_view text) {
  const char* p = text.data();
  const char* const end = p + text.size();
  while (p != end && IsSpace(*p)) ++p;
  const bool negative = p != end && *p == '-';
  if (p != end && (*p == '-' || *p == '+')) ++p;
  const std::uint64_t limit = std::uint64_t{std::numeric_limits<std::int64_t>::max()} + negative;
  std::uint64_t value = 0;
  for (; p != end && IsDigit(*p); ++p) {
    const std::uint64_t digit = DigitValue(*p);
    value = value > (limit - digit) / 10 ? limit : value * 10 + digit;
  }
  return static_cast<std::int64_t>(negative ? 0 - value : value);
}

// The same, with the nearest limit if 32 bits do not hold the number.
constexpr std::int32_t DecimalToInt32(std::string_view text) {
  return SaturatedTo32Bits(DecimalToInt64(text));
}

// Returns the number that `text` is from its first to its last character, in digits of `base` and,
// for a signed type, with a "-" before them. Returns nothing for any other text and for a number
// that the type does not hold.
template <std::integral Number>
std::optional<Number> ParseNumber(std::string_view text, int base = 10) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

// Returns the value of a hexadecimal digit in either case, or -1.
constexpr int HexDigitValue(char c) {
  if (IsDigit(c)) return c - '0';
  const char lower = ToLower(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Returns two lower-case hexadecimal digits for each byte.
inline std::string HexOf(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string hex;
  hex.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    hex += {kDigits[byte >> 4], kDigits[byte & 0xF]};
  }
  return hex;
}

}  // namespace qv::text
