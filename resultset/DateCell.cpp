#include "DateCell.h"

#include <algorithm>
#include <cstdio>

#include "ByteScan.h"
#include "CellValue.h"
#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv {

namespace {

// How the fields are laid out in a cell, from the lowest bit on: milliseconds, second, minute,
// hour, day, month, year, and two marks. All bits are 0 if there is no date.
constexpr unsigned kMillisecondBits = 10;
constexpr unsigned kFieldBits = 7;
constexpr unsigned kYearBits = 14;
constexpr std::uint64_t kHasFields = std::uint64_t{1} << 60;
constexpr std::uint64_t kDateOnly = std::uint64_t{1} << 61;
constexpr std::uint64_t kUnreadable = std::uint64_t{1} << 62;

constexpr std::int32_t kMostYear = 9999;
constexpr std::int32_t kMostOfField = 99;

// Returns 0 if a field is out of range.
std::uint64_t Packed(const DateFields& fields) {
  std::uint64_t bits = 0;
  bool fits = true;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const auto field = static_cast<std::uint32_t>(fields[i]);  // a negative one becomes large
    fits &= field <= static_cast<std::uint32_t>(i == 0 ? kMostYear : kMostOfField);
    bits = bits << kFieldBits | field;
  }
  return fits ? bits << kMillisecondBits | kHasFields : 0;
}

constexpr std::int32_t kDateSeparators = 5;

// Where each field starts; the year has four characters, the others two.
constexpr std::array<std::size_t, 6> kFieldStarts = {0, 5, 8, 11, 14, 17};
constexpr std::size_t kDateLength = 10;
constexpr std::size_t kTimeLength = 19;

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

// Returns the milliseconds of a text of at least kTimeLength characters.
std::int32_t ReadFraction(std::string_view text) {
  if (text.size() <= kTimeLength || text[kTimeLength] != '.') return 0;
  std::int32_t milliseconds = 0;
  std::int32_t unit = 100;
  for (const char c : text.substr(kTimeLength + 1, 3)) {
    if (!text::IsDigit(c)) break;
    milliseconds += unit * static_cast<std::int32_t>(text::DigitValue(c));
    unit /= 10;
  }
  return milliseconds;
}

// Reads "YYYY-MM-DD".
DateValue ParseDateOnly(std::string_view text) {
  DateFields fields{};
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_separator = i == 4 || i == 7;
    if (is_separator ? text[i] != '-' : !text::IsDigit(text[i])) return {};
  }
  for (std::size_t i = 0; i < 3; ++i) {
    fields[i] = text::DecimalToInt32(text.substr(kFieldStarts[i], i == 0 ? 4 : 2));
  }
  return {DateCell::DateOnly(fields), 0};
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

// The fields as text, whatever their size.
using DateText = std::array<char, 64>;

}  // namespace

DateCell::DateCell(const DateFields& fields, std::int32_t millisecond) : bits_(Packed(fields)) {
  bits_ = bits_ != 0 ? bits_ | static_cast<std::uint64_t>(millisecond) : kUnreadable;
}

DateCell DateCell::DateOnly(const DateFields& fields) {
  DateCell cell(fields);
  cell.bits_ |= kDateOnly;
  return cell;
}

DateCell DateCell::Unreadable() {
  DateCell cell;
  cell.bits_ = kUnreadable;
  return cell;
}

DateCell DateCell::Of(const COleDateTime& date) {
  return DateCell({date.GetYear(), date.GetMonth(), date.GetDay(), date.GetHour(), date.GetMinute(),
                   date.GetSecond()});
}

bool DateCell::HasFields() const { return (bits_ & kHasFields) != 0; }

DateFields DateCell::Fields() const {
  constexpr std::uint64_t kFieldMask = (1u << kFieldBits) - 1;
  constexpr std::uint64_t kYearMask = (1u << kYearBits) - 1;
  DateFields fields{};
  std::uint64_t rest = bits_ >> kMillisecondBits;
  for (std::size_t i = fields.size(); i-- > 0; rest >>= kFieldBits) {
    fields[i] = static_cast<std::int32_t>(rest & (i == 0 ? kYearMask : kFieldMask));
  }
  return fields;
}

COleDateTime DateCell::Date() const {
  if (bits_ == 0 || (bits_ & kDateOnly) != 0) return {};
  const DateFields f = Fields();
  return {f[0], f[1], f[2], f[3], f[4], f[5]};
}

CString DateCell::Text() const {
  if (!HasFields()) return {};
  const DateFields f = Fields();
  const auto millisecond = static_cast<int>(bits_ & ((1u << kMillisecondBits) - 1));
  DateText text;
  int length = std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", f[0], f[1], f[2]);
  const auto append = [&](const char* format, auto... numbers) {
    const auto used = static_cast<std::size_t>(length);
    length += std::snprintf(text.data() + used, text.size() - used, format, numbers...);
  };
  if ((bits_ & kDateOnly) == 0) append(" %02d:%02d:%02d", f[3], f[4], f[5]);
  if (millisecond != 0) append(".%03d", millisecond);
  return CString(std::string_view(text.data(), static_cast<std::size_t>(length)));
}

DateValue MakeDate(const DateFields& fields, std::int32_t millisecond) {
  return {DateCell(fields, millisecond), LengthOfNumbers(fields)};
}

DateValue ParseDate(std::string_view text) {
  if (text.size() == kDateLength) return ParseDateOnly(text);
  if (text.size() < kTimeLength) return {};
  DateFields fields;
  const std::int32_t millisecond = ReadFraction(text);
  if (ReadDigits(text.data(), fields)) {
    return {DateCell(fields, millisecond), LengthOfDigits(fields)};
  }
  ReadNumbers(text, fields);
  const DateValue value = MakeDate(fields, millisecond);
  if (value.date.Date().GetStatus() == COleDateTime::valid) return value;
  return {DateCell::Unreadable(), value.display_length};
}

}  // namespace qv
