#include "CellText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace qv {

namespace {

constexpr std::int32_t kFractionLength = 7;  // the point and six decimals

// The largest doubles have 309 digits before the point.
using FixedText = std::array<char, 1 + 309 + kFractionLength + 1>;

std::int32_t FormatFixed(double value, FixedText& text) {
  return static_cast<std::int32_t>(std::snprintf(text.data(), text.size(), "%f", value));
}

// From each of these on, six decimals round up to one more digit before the point. They are the
// smallest such doubles; from ten digits on, doubles are too far apart for rounding to matter.
constexpr std::array<double, 15> kDigitThresholds = {
    9.9999995,      99.9999995,      999.9999995,      9999.9999995,      99999.9999995,
    999999.9999995, 9999999.9999995, 99999999.9999995, 999999999.9999995, 10000000000.0,
    100000000000.0, 1000000000000.0, 10000000000000.0, 100000000000000.0, 1000000000000000.0};

}  // namespace

std::string CellText(std::int32_t value) { return std::to_string(value); }

std::string CellText(double value) {
  FixedText text;
  const std::int32_t length = FormatFixed(value, text);
  return std::string(text.data(), static_cast<std::size_t>(length));
}

std::string CellText(const COleDateTime& value) {
  if (value.m_dt == 0.0) return {};
  return static_cast<const char*>(value.Format("%Y-%m-%d %H:%M:%S"));
}

std::int32_t DecimalLength(std::int32_t value) {
  std::uint32_t rest = static_cast<std::uint32_t>(value);
  std::int32_t length = 1;
  if (value < 0) {
    rest = 0 - rest;
    ++length;
  }
  for (; rest >= 10; rest /= 10) ++length;
  return length;
}

std::int32_t FixedLength(double value) {
  const double size = std::fabs(value);
  // Not-a-number fails the comparison as well.
  if (!(size < kDigitThresholds.back())) {
    FixedText text;
    return FormatFixed(value, text);
  }
  std::int32_t digits = 1;
  for (const double threshold : kDigitThresholds) {
    if (size < threshold) break;
    ++digits;
  }
  return digits + kFractionLength + (std::signbit(value) ? 1 : 0);
}

}  // namespace qv
