#include "ColumnFit.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "CellForm.h"
#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv::standin {

namespace {

// Doubles hold every integer up to this size, and every decimal number of so many digits.
constexpr std::int64_t kLargestExact = std::int64_t{1} << 53;
constexpr std::size_t kExactDigits = 15;
constexpr std::int64_t kExactExponent = 290;
constexpr std::size_t kLongestNumber = 1000;

bool IsExactAsDouble(std::int64_t value) {
  return (value >= -kLargestExact && value <= kLargestExact) ||
         static_cast<std::uint64_t>(value) << 11 == 0;
}

// A decimal number as its digits without leading and trailing zeros, and the power of ten of the
// last of them.
struct Decimal {
  bool negative = false;
  std::string digits;
  std::int64_t exponent = 0;

  bool operator==(const Decimal&) const = default;
};

void StripZeros(Decimal& decimal) {
  decimal.digits.erase(0, decimal.digits.find_first_not_of('0'));
  while (decimal.digits.ends_with('0')) {
    decimal.digits.pop_back();
    ++decimal.exponent;
  }
  if (decimal.digits.empty()) decimal = {};
}

// Returns nothing for a text that is no decimal number.
std::optional<Decimal> ParseDecimal(std::string_view text) {
  Decimal decimal;
  if (text.empty() || text.size() > kLongestNumber) return std::nullopt;
  decimal.negative = text.front() == '-';
  if (text.front() == '-' || text.front() == '+') text.remove_prefix(1);
  const std::size_t mark = text.find_first_of("eE");
  if (mark != std::string_view::npos) {
    std::string_view power = text.substr(mark + 1);
    if (power.starts_with('+')) power.remove_prefix(1);
    const auto exponent = text::ParseNumber<std::int32_t>(power);
    if (!exponent) return std::nullopt;
    decimal.exponent = *exponent;
  }
  const std::string_view plain = text.substr(0, mark);
  const std::size_t point = std::min(plain.find('.'), plain.size());
  decimal.digits = plain.substr(0, point);
  if (point < plain.size()) {
    decimal.digits += plain.substr(point + 1);
    decimal.exponent -= static_cast<std::int64_t>(plain.size() - point - 1);
  }
  if (decimal.digits.empty() || !std::ranges::all_of(decimal.digits, text::IsDigit)) {
    return std::nullopt;
  }
  StripZeros(decimal);
  return decimal;
}

bool FitsDouble(std::string_view text, const Decimal& decimal) {
  if (decimal.digits.size() <= kExactDigits && std::abs(decimal.exponent) <= kExactExponent) {
    return true;
  }
  double value = 0;
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
  if (parsed.ec != std::errc()) return false;
  std::array<char, 40> shortest;
  const auto end = std::to_chars(shortest.data(), shortest.data() + shortest.size(), value).ptr;
  return ParseDecimal({shortest.data(), static_cast<std::size_t>(end - shortest.data())}) ==
         decimal;
}

// The integers that a kind of column holds.
struct Range {
  ColumnKind kind;
  std::int64_t lowest;
  std::int64_t highest;
};

template <typename Integer>
constexpr Range RangeOf(ColumnKind kind) {
  return {kind, std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max()};
}

constexpr std::array kRanges{
    RangeOf<std::uint8_t>(ColumnKind::kUint8), RangeOf<std::int16_t>(ColumnKind::kInt16),
    RangeOf<std::int32_t>(ColumnKind::kInt32), RangeOf<std::int64_t>(ColumnKind::kInt64)};

// Hosts read decimals as doubles, unless a double would round one of them.
bool IsDouble(ColumnKind kind) {
  return kind == ColumnKind::kDouble || kind == ColumnKind::kDecimal;
}

bool IsInteger(ColumnKind kind) {
  return std::ranges::any_of(kRanges, [kind](const Range& range) { return range.kind == kind; });
}

}  // namespace

ColumnFit::ColumnFit(ColumnKind kind)
    : kind_(kind),
      is_integer_(IsInteger(kind)),
      is_double_(IsDouble(kind)),
      is_number_(is_integer_ || is_double_ || kind == ColumnKind::kSingle) {}

void ColumnFit::Add(const Cell& cell) {
  if (!is_number_) {
    has_misfit_ |= IsMisfit(kind_, cell);
  } else if (const auto* const whole = std::get_if<std::int64_t>(&cell)) {
    AddInteger(*whole);
  } else if (const auto* const value = std::get_if<double>(&cell)) {
    AddDouble(*value);
  } else if (const auto* const text = std::get_if<std::string_view>(&cell)) {
    AddDecimal(*text);
  } else {
    has_misfit_ |= std::holds_alternative<Binary>(cell);
  }
}

void ColumnFit::AddInteger(std::int64_t value) {
  lowest_ = std::min(lowest_, value);
  highest_ = std::max(highest_, value);
  doubles_lose_ |= !IsExactAsDouble(value);
}

void ColumnFit::AddDouble(double value) {
  if (std::trunc(value) == value && std::abs(value) <= static_cast<double>(kLargestExact)) {
    AddInteger(static_cast<std::int64_t>(value));
  } else {
    integers_lose_ = true;
  }
}

void ColumnFit::AddDecimal(std::string_view text) {
  if (const auto whole = text::ParseNumber<std::int64_t>(text)) return AddInteger(*whole);
  // Engines have decimals that are no number and infinite ones, and so have doubles.
  constexpr std::array<std::string_view, 3> kSpecial{"NaN", "Infinity", "-Infinity"};
  const bool is_special = std::ranges::find(kSpecial, text) != kSpecial.end();
  const auto decimal = ParseDecimal(text);
  has_misfit_ |= !is_special && !decimal;
  integers_lose_ |= is_special || decimal;
  doubles_lose_ |= decimal && !FitsDouble(text, *decimal);
}

ColumnKind ColumnFit::Fitted() const {
  if (has_misfit_) return ColumnKind::kText;
  if (is_integer_ && !integers_lose_) return FittedInteger();
  if (!is_integer_ && !is_double_) return kind_;
  if (!doubles_lose_) return ColumnKind::kDouble;
  return is_integer_ || integers_lose_ ? ColumnKind::kDecimal : ColumnKind::kInt64;
}

ColumnKind ColumnFit::FittedInteger() const {
  const auto is_declared = [this](const Range& range) { return range.kind == kind_; };
  const auto declared = std::ranges::find_if(kRanges, is_declared);
  const auto holds_all = [this](const Range& range) {
    return lowest_ >= range.lowest && highest_ <= range.highest;
  };
  return std::find_if(declared, kRanges.end(), holds_all)->kind;
}

}  // namespace qv::standin
