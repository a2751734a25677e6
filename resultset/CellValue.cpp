#include "CellValue.h"

#include <fast_float/fast_float.h>

#include <array>
#include <charconv>
#include <limits>
#include <optional>

#include "ByteScan.h"
#include "CellText.h"
#include "framework/DecimalText.h"

namespace qv {

namespace {

std::string_view WithoutLeadingSpace(std::string_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  return text;
}

std::string_view Trimmed(std::string_view text) {
  text = WithoutLeadingSpace(text);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

bool IsHexDouble(std::string_view text) {
  return text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

double ParseHexDouble(std::string_view digits) {
  // What may stand before the digits of other numbers, a sign or a word, may not stand here.
  if (std::string_view("0123456789abcdefABCDEF.").find(digits.front()) == std::string_view::npos)
    return 0.0;
  double value = 0.0;
  const auto parsed =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::hex);
  if (parsed.ec != std::errc::result_out_of_range) return value;
  const bool tiny = std::string_view(digits.data(), parsed.ptr).find('-') != std::string_view::npos;
  return tiny ? 0.0 : std::numeric_limits<double>::infinity();
}

// Nothing when there is no number at all; then a sign before it means nothing either.
std::optional<double> ParseUnsigned(std::string_view text) {
  if (text.empty() || text.front() == '-' || text.front() == '+') return std::nullopt;
  if (IsHexDouble(text)) return ParseHexDouble(text.substr(2));
  double value = 0.0;
  const auto parsed = fast_float::from_chars(text.data(), text.data() + text.size(), value);
  if (parsed.ec == std::errc::invalid_argument) return std::nullopt;
  return value;
}

// Year, month, day, hour, minute, second.
using DateFields = std::array<std::int32_t, 6>;

// Where each field starts; the year has four characters, the others two.
constexpr std::array<std::size_t, 6> kFieldStarts = {0, 5, 8, 11, 14, 17};

// Reads fields that are all digits, as dates are; false when they are not.
bool ReadDigits(const char* text, DateFields& fields) {
  bool all_digits = true;
  const auto two = [&](const char* p) {
    all_digits = all_digits && IsDigit(p[0]) && IsDigit(p[1]);
    return static_cast<std::int32_t>(Digit(p[0]) * 10 + Digit(p[1]));
  };
  fields[0] = two(text) * 100 + two(text + 2);
  for (std::size_t i = 1; i < fields.size(); ++i) fields[i] = two(text + kFieldStarts[i]);
  return all_digits;
}

// Reads whatever numbers the fields hold.
void ReadNumbers(std::string_view text, DateFields& fields) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    fields[i] = DecimalToInt32(text.substr(kFieldStarts[i], i == 0 ? 4 : 2));
  }
}

// The character behind "&#x", two digits and ";" at `p`, or 0. At least six bytes can be read.
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

// One pass from left to right, so that nothing is decoded twice. Returns the length of what was
// written.
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

DateValue ParseDate(std::string_view text) {
  constexpr std::size_t kDateLength = 19;
  constexpr std::int32_t kSeparators = 5;
  if (text.size() < kDateLength) return {};
  DateFields fields;
  if (!ReadDigits(text.data(), fields)) ReadNumbers(text, fields);
  DateValue value;
  value.date.SetDateTime(fields[0], fields[1], fields[2], fields[3], fields[4], fields[5]);
  value.display_length = kSeparators;
  for (const std::int32_t field : fields) value.display_length += DecimalLength(field);
  return value;
}

std::size_t AppendText(TextCells& cells, std::string_view text) {
  // No entity stands for white space, so trimming first gives the same and is cheaper.
  text = Trimmed(text);
  const char* const end = text.data() + text.size();
  if (text.empty() || FindByte(text.data(), end, '&') == end) {
    cells.push_back(text);
    return text.size();
  }
  const std::size_t length = DecodeEntities(text.data(), end, cells.Begin(text.size()));
  cells.Finish(length);
  return length;
}

}  // namespace qv
