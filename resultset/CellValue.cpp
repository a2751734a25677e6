#include "CellValue.h"

#include <fast_float/fast_float.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "ByteScan.h"
#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv {

namespace {

std::string_view WithoutLeadingSpace(std::string_view text) {
  while (!text.empty() && text::IsSpace(text.front())) text.remove_prefix(1);
  return text;
}

bool IsHexDouble(std::string_view text) {
  return text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

// Real files do not contain such numbers, so the slow C library is good enough.
double ParseHexDouble(std::string_view text) {
  return std::strtod(std::string(text).c_str(), nullptr);
}

// Returns nothing if there is no number; a sign before it is then ignored.
std::optional<double> ParseUnsigned(std::string_view text) {
  if (text.empty() || text.front() == '-' || text.front() == '+') return std::nullopt;
  if (IsHexDouble(text)) return ParseHexDouble(text);
  double value = 0.0;
  const auto parsed = fast_float::from_chars(text.data(), text.data() + text.size(), value);
  if (parsed.ec == std::errc::invalid_argument) return std::nullopt;
  return value;
}

// Returns the character of "&#x", two digits and ";" at `p`, or 0. At least six bytes must be
// readable.
char DecodeEntity(const char* p) {
  struct Entity {
    char text[7];
    char meaning;
  };
  static constexpr std::array<Entity, 5> kEntities = {
      {{"&#x3c;", '<'}, {"&#x3e;", '>'}, {"&#x27;", '\''}, {"&#x26;", '&'}, {"&#x22;", '"'}}};
  for (const Entity& entity : kEntities) {
    if (std::memcmp(p, entity.text, 6) == 0) return entity.meaning;
  }
  return 0;
}

// Decodes in one pass from left to right, so that nothing is decoded twice. Returns the length of
// the result.
std::size_t DecodeEntities(const char* p, const char* end, char* out) {
  constexpr std::ptrdiff_t kEntityLength = 6;
  char* const start = out;
  while (p < end) {
    const char* const ampersand = FindByte(p, end, '&');
    const auto plain = static_cast<std::size_t>(ampersand - p);
    std::memcpy(out, p, plain);
    out += plain;
    p = ampersand;
    if (p == end) break;
    const char meaning = end - p >= kEntityLength ? DecodeEntity(p) : '\0';
    *out++ = meaning != '\0' ? meaning : '&';
    p += meaning != '\0' ? kEntityLength : 1;
  }
  return static_cast<std::size_t>(out - start);
}

// The shortest text from which the same number is read.
template <class Number>
CString ShortestText(Number number) {
  std::array<char, 32> text;
  const char* const end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return CString(std::string_view(text.data(), static_cast<std::size_t>(end - text.data())));
}

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

std::int32_t ParseBoolean(std::string_view text) {
  constexpr std::string_view kTrue = "true";
  if (text.size() != kTrue.size()) return 0;
  for (std::size_t i = 0; i < kTrue.size(); ++i) {
    // Folds upper case to lower, and no other character to one of these letters.
    if ((text[i] | 0x20) != kTrue[i]) return 0;
  }
  return 1;
}

double ParseDouble(std::string_view text) {
  text = WithoutLeadingSpace(text);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const std::optional<double> value = ParseUnsigned(text);
  if (!value) return 0.0;
  return negative ? -*value : *value;
}

std::int64_t ParseInteger(std::string_view text) {
  constexpr std::uint64_t kZeros = 0x3030303030303030u;
  constexpr std::uint64_t kHundredMillion = 100'000'000;
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  if (text.empty() || text.size() > 2 * kWord) return text::DecimalToInt64(text);
  const bool is_long = text.size() > kWord;
  // The first digits move to the end of the word, behind zeros; after them follow none or eight.
  const unsigned digits = static_cast<unsigned>(is_long ? text.size() - kWord : text.size());
  const unsigned unused = 64 - digits * 8;
  const std::uint64_t zeros = unused == 0 ? 0 : kZeros >> (64 - unused);
  const std::uint64_t head = LoadWord(text.data()) << unused | zeros;
  if (!AreDigits(head)) return text::DecimalToInt64(text);
  if (!is_long) return static_cast<std::int64_t>(EightDigits(head));
  const std::uint64_t tail = LoadWord(text.data() + digits);
  if (!AreDigits(tail)) return text::DecimalToInt64(text);
  return static_cast<std::int64_t>(EightDigits(head) * kHundredMillion + EightDigits(tail));
}

std::size_t AppendText(TextCells& cells, std::string_view text, bool may_have_entities) {
  const char* const end = text.data() + text.size();
  if (!may_have_entities || text.empty() || FindByte(text.data(), end, '&') == end) {
    cells.AppendFromBuffer(text);
    return text::Trimmed(text).size();
  }
  char* const decoded = cells.Begin(text.size());
  const std::size_t length = DecodeEntities(text.data(), end, decoded);
  cells.Finish(length);
  return text::Trimmed({decoded, length}).size();
}

CString CellText(std::int32_t value) { return ShortestText(value); }

CString CellText(double value) {
  FixedText text;
  const std::int32_t length = FormatFixed(value, text);
  return CString(std::string_view(text.data(), static_cast<std::size_t>(length)));
}

CString CellText(const COleDateTime& value) {
  if (value.m_dt == 0.0) return {};
  return value.Format("%Y-%m-%d %H:%M:%S");
}

CString ExactText(std::int64_t value) { return ShortestText(value); }

CString ExactText(double value) {
  // Systems differ in the texts of those that are not positive.
  return std::isnan(value) ? CString("nan") : ShortestText(value);
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
