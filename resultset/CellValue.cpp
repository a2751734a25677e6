#include "CellValue.h"

#include <fast_float/fast_float.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "ByteScan.h"
#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv {

static_assert(kValueSlack >= kScanSlack);

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

// Reads up to eight digits, of which there may be none. Returns false if other characters are among
// them. At least eight bytes must be readable.
inline bool ReadDigits(const char* p, std::size_t count, std::uint64_t& number) {
  constexpr std::uint64_t kZeros = 0x3030303030303030u;
  number = 0;
  if (count == 0) return true;
  const std::size_t unused = 64 - count * 8;
  const std::uint64_t word =
      unused == 0 ? LoadWord(p) : LoadWord(p) << unused | kZeros >> count * 8;
  number = EightDigits(word);
  return AreDigits(word);
}

// Returns the number that a text such as "-123.45" is, with up to eight digits on each side of the
// point, or nothing for other texts: numerator and denominator are exact, so that one division
// rounds correctly. Up to kScanSlack bytes after the text are read.
std::optional<double> ParseShortDecimal(std::string_view text) {
  static constexpr std::array<double, 9> kPowers = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
  constexpr std::size_t kMostDigits = 8;
  constexpr std::uint64_t kMostExact = std::uint64_t{1} << 53;
  const bool is_negative = text.starts_with('-');
  if (is_negative) text.remove_prefix(1);
  const char* const end = text.data() + text.size();
  if (text.empty() || text.size() > 2 * kMostDigits + 1) return std::nullopt;
  const auto points = MatchBytes(text.data(), '.');
  const char* const point = points != 0 ? std::min(text.data() + FirstMatch(points), end) : end;
  const auto whole_digits = static_cast<std::size_t>(point - text.data());
  const std::size_t digits = point != end ? static_cast<std::size_t>(end - point) - 1 : 0;
  if (whole_digits == 0 || whole_digits > kMostDigits || digits > kMostDigits) return std::nullopt;
  std::uint64_t whole = 0;
  std::uint64_t fraction = 0;
  if (!ReadDigits(text.data(), whole_digits, whole)) return std::nullopt;
  if (!ReadDigits(point + 1, digits, fraction)) return std::nullopt;
  const std::uint64_t number = whole * static_cast<std::uint64_t>(kPowers[digits]) + fraction;
  if (number > kMostExact) return std::nullopt;
  const double value = static_cast<double>(number) / kPowers[digits];
  return is_negative ? -value : value;
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
  std::uint32_t letters = 0;
  std::uint32_t lower = 0;
  std::memcpy(&letters, text.data(), sizeof letters);
  std::memcpy(&lower, kTrue.data(), sizeof lower);
  // Folds upper case to lower, and no other character to one of these letters.
  return (letters | 0x20202020u) == lower ? 1 : 0;
}

double ParseDouble(std::string_view text) {
  text = WithoutLeadingSpace(text);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const std::optional<double> value = ParseUnsigned(text);
  if (!value) return 0.0;
  return negative ? -*value : *value;
}

double ParseDoubleInBuffer(std::string_view text) {
  const std::optional<double> value = ParseShortDecimal(text);
  return value ? *value : ParseDouble(text);
}

std::int64_t ParseInteger(std::string_view text) {
  constexpr std::uint64_t kHundredMillion = 100'000'000;
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  if (text.empty() || text.size() > 2 * kWord) return text::DecimalToInt64(text);
  const std::size_t tail_digits = text.size() > kWord ? kWord : 0;
  const std::size_t head_digits = text.size() - tail_digits;
  std::uint64_t head = 0;
  std::uint64_t tail = 0;
  if (!ReadDigits(text.data(), head_digits, head)) return text::DecimalToInt64(text);
  if (tail_digits == 0) return static_cast<std::int64_t>(head);
  if (!ReadDigits(text.data() + head_digits, tail_digits, tail)) return text::DecimalToInt64(text);
  return static_cast<std::int64_t>(head * kHundredMillion + tail);
}

std::size_t CopyText(std::string_view text, bool may_have_entities, char* to) {
  static constexpr char kNothing[TextCells::kCopyStep] = {};
  const char* const end = text.data() + text.size();
  if (may_have_entities && !text.empty() && FindByte(text.data(), end, '&') != end) {
    return DecodeEntities(text.data(), end, to);
  }
  // The usual ones are copied in one step of fixed size, without a call and without a branch that
  // depends on their length.
  if (text.size() <= TextCells::kCopyStep) {
    std::memcpy(to, text.data() != nullptr ? text.data() : kNothing, TextCells::kCopyStep);
  } else {
    std::memcpy(to, text.data(), text.size());
  }
  return text.size();
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
