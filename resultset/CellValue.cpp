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

// Returns true if all eight bytes of a word are decimal digits.
bool AreDigits(std::uint64_t word) {
  constexpr std::uint64_t kHighHalves = 0xF0F0F0F0F0F0F0F0u;
  constexpr std::uint64_t kSixes = 0x0606060606060606u;
  constexpr std::uint64_t kThrees = 0x3030303030303030u;
  // Adding six carries out of the low half of a byte that is above '9'.
  return (word & kHighHalves) == kThrees && ((word + kSixes) & kHighHalves) == kThrees;
}

// Returns the number that eight digits in a word represent, the first byte being the highest:
// neighbours are joined to numbers of two, four and eight digits.
std::uint64_t EightDigits(std::uint64_t word) {
  word = (word & 0x0F0F0F0F0F0F0F0Fu) * (10 * 0x100 + 1) >> 8;
  word = (word & 0x00FF00FF00FF00FFu) * (100 * 0x10000 + 1) >> 16;
  return (word & 0x0000FFFF0000FFFFu) * (10000ull * 0x100000000 + 1) >> 32;
}

constexpr std::int32_t kDateSeparators = 5;

// Where each field starts; the year has four characters, the others two.
constexpr std::array<std::size_t, 6> kFieldStarts = {0, 5, 8, 11, 14, 17};

// Reads fields that consist of digits, as dates usually do. Returns false if they do not. The
// characters between them do not matter.
bool ReadDigits(const char* text, DateFields& fields) {
  // Zeros replace the separators: "YYYY-MM-" and "DD HH:MM" become numbers of eight digits.
  const std::uint64_t date = (LoadWord(text) & 0x00FFFF00FFFFFFFFu) | 0x3000003000000000u;
  const std::uint64_t time = (LoadWord(text + 8) & 0xFFFF00FFFF00FFFFu) | 0x0000300000300000u;
  const std::uint32_t tens = text::DigitValue(text[17]);
  const std::uint32_t ones = text::DigitValue(text[18]);
  if (!AreDigits(date) || !AreDigits(time) || tens > 9 || ones > 9) return false;
  const auto year_month = static_cast<std::int32_t>(EightDigits(date));
  const auto day_time = static_cast<std::int32_t>(EightDigits(time));
  fields = {year_month / 10000, year_month / 10 % 100,
            day_time / 1000000, day_time / 1000 % 100,
            day_time % 100,     static_cast<std::int32_t>(tens * 10 + ones)};
  return true;
}

// Reads the number at the start of each field.
void ReadNumbers(std::string_view text, DateFields& fields) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    fields[i] = text::DecimalToInt32(text.substr(kFieldStarts[i], i == 0 ? 4 : 2));
  }
}

// Returns the length of the fields without padding, including the separators.
std::int32_t LengthOfNumbers(const DateFields& fields) {
  std::int32_t length = kDateSeparators;
  for (const std::int32_t field : fields) length += DecimalLength(field);
  return length;
}

// The same for fields that consist of digits: the year has up to four, the others up to two.
std::int32_t LengthOfDigits(const DateFields& fields) {
  const std::int32_t year = fields[0];
  std::int32_t length = kDateSeparators + 6 + (year > 9) + (year > 99) + (year > 999);
  for (std::size_t i = 1; i < fields.size(); ++i) length += fields[i] > 9;
  return length;
}

COleDateTime DateOf(const DateFields& fields) {
  return {fields[0], fields[1], fields[2], fields[3], fields[4], fields[5]};
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

DateValue MakeDate(const DateFields& fields) { return {DateOf(fields), LengthOfNumbers(fields)}; }

DateValue ParseDate(std::string_view text) {
  constexpr std::size_t kDateLength = 19;
  if (text.size() < kDateLength) return {};
  DateFields fields;
  if (ReadDigits(text.data(), fields)) return {DateOf(fields), LengthOfDigits(fields)};
  ReadNumbers(text, fields);
  return MakeDate(fields);
}

std::int32_t ParseInteger(std::string_view text) {
  constexpr std::uint64_t kZeros = 0x3030303030303030u;
  if (text.empty() || text.size() > sizeof(std::uint64_t)) return text::DecimalToInt32(text);
  // The digits move to the end of the word, behind zeros.
  const unsigned unused = 64 - static_cast<unsigned>(text.size()) * 8;
  const std::uint64_t zeros = unused == 0 ? 0 : kZeros >> (64 - unused);
  const std::uint64_t word = LoadWord(text.data()) << unused | zeros;
  if (!AreDigits(word)) return text::DecimalToInt32(text);
  return static_cast<std::int32_t>(EightDigits(word));
}

std::size_t AppendText(TextCells& cells, std::string_view text, bool may_have_entities) {
  // No entity represents white space, so trimming first has the same effect and is cheaper.
  text = text::Trimmed(text);
  const char* const end = text.data() + text.size();
  if (!may_have_entities || text.empty() || FindByte(text.data(), end, '&') == end) {
    cells.AppendFromBuffer(text);
    return text.size();
  }
  const std::size_t length = DecodeEntities(text.data(), end, cells.Begin(text.size()));
  cells.Finish(length);
  return length;
}

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
