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

// Values from each of these thresholds on gain a digit before the point when rounded to six
// decimals: the smallest doubles that are not below 10 - 0.0000005, 100 - 0.0000005 and so on. From
// ten digits on, doubles are too far apart for it to matter.
constexpr std::array<double, 15> kDigitThresholds = {
    0x1.3ffffef39086p+3,   0x1.8fffffde7210cp+6,  0x1.f3fffffbce422p+9,  0x1.387fffffbce43p+13,
    0x1.869ffffff79c9p+16, 0x1.e847fffffef3ap+19, 0x1.312cffffffef4p+23, 0x1.7d783ffffffdfp+26,
    0x1.dcd64fffffffcp+29, 0x1.2a05f2p+33,        0x1.74876e8p+36,       0x1.d1a94a2p+39,
    0x1.2309ce54p+43,      0x1.6bcc41e9p+46,      0x1.c6bf52634p+49};

}  // namespace

CString CellText(std::int32_t value) {
  std::array<char, 11> text;
  const char* const end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return CString(std::string_view(text.data(), static_cast<std::size_t>(end - text.data())));
}

CString CellText(double value) {
  FixedText text;
  const std::int32_t length = FormatFixed(value, text);
  return CString(std::string_view(text.data(), static_cast<std::size_t>(length)));
}

CString CellText(const COleDateTime& value) {
  if (value.m_dt == 0.0) return {};
  return value.Format("%Y-%m-%d %H:%M:%S");
}

std::int32_t FixedLength(double value) {
  const double size = std::fabs(value);
  // NaN fails the comparison as well.
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
