#include "CellForm.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv::standin {

namespace {

constexpr std::string_view kDateShape = "0000-00-00";
// Of a time that is missing, the zeros are what it means.
constexpr std::string_view kTimeShape = "00:00:00";
constexpr std::string_view kShortTimeShape = "00:00";
constexpr std::size_t kLongestFraction = 10;  // a point and nine digits

// What stands for a character that must not appear as it is. A NUL would end the text for its
// reader.
std::string_view EntityOf(char special) {
  switch (special) {
    case '<':
      return "&#x3c;";
    case '>':
      return "&#x3e;";
    case '\'':
      return "&#x27;";
    case '&':
      return "&#x26;";
    case '"':
      return "&#x22;";
    default:
      return "";
  }
}

constexpr auto kIsSpecial = [] {
  std::array<bool, 256> is_special{};
  for (const char ch : {'<', '>', '\'', '&', '"', '\0'})
    is_special[static_cast<unsigned char>(ch)] = true;
  return is_special;
}();

void AppendEscaped(std::string_view text, std::string& out) {
  std::size_t start = 0;  // of what was not appended yet
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!kIsSpecial[static_cast<unsigned char>(text[at])]) continue;
    out += text.substr(start, at - start);
    out += EntityOf(text[at]);
    start = at + 1;
  }
  out += text.substr(start);
}

void AppendHex(std::string_view bytes, std::string& out) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  for (const char ch : bytes) {
    const auto byte = static_cast<unsigned char>(ch);
    out += kDigits[byte >> 4];
    out += kDigits[byte & 0xf];
  }
}

void AppendBase64(std::string_view bytes, std::string& out) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::string_view group = bytes.substr(at, 3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      bits = bits << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      out += i <= group.size() ? kDigits[bits >> (18 - 6 * i) & 0x3f] : '=';
    }
  }
}

template <typename Number>
void AppendNumber(Number value, std::string& out) {
  std::array<char, 40> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  out.append(text.data(), end);
}

bool HasShape(std::string_view text, std::string_view shape) {
  if (text.size() < shape.size()) return false;
  for (std::size_t i = 0; i < shape.size(); ++i) {
    const bool fits = shape[i] == '0' ? text[i] >= '0' && text[i] <= '9' : text[i] == shape[i];
    if (!fits) return false;
  }
  return true;
}

// The parts of a date's text. `time` and `fraction` may be empty.
struct DateParts {
  std::string_view date;
  std::string_view time;
  std::string_view fraction;  // of a second, with its point
};

std::string_view TakeFraction(std::string_view& rest) {
  if (!rest.starts_with('.')) return {};
  std::size_t end = 1;
  while (end < rest.size() && text::IsDigit(rest[end])) ++end;
  std::string_view fraction = rest.substr(0, end);
  rest.remove_prefix(end);
  while (fraction.ends_with('0')) fraction.remove_suffix(1);
  return fraction.size() > 1 ? fraction.substr(0, kLongestFraction) : std::string_view();
}

// `date` has the shape of one.
bool IsInCalendar(std::string_view date) {
  const auto number = [date](std::size_t at, std::size_t length) {
    return text::ParseNumber<std::uint16_t>(date.substr(at, length)).value_or(0);
  };
  const std::chrono::year_month_day day(std::chrono::year(number(0, 4)),
                                        std::chrono::month(number(5, 2)),
                                        std::chrono::day(number(8, 2)));
  return number(0, 4) != 0 && day.ok();
}

// `time` is empty or has one of the shapes.
bool IsOnClock(std::string_view time) {
  if (time.empty()) return true;
  return time.substr(0, 2) <= "23" && time.substr(3, 2) <= "59" &&
         (time.size() == kShortTimeShape.size() || time.substr(6) <= "59");
}

// Returns whether a text is empty or an offset from universal time.
bool IsOffset(std::string_view text) {
  if (text.starts_with(' ')) text.remove_prefix(1);
  if (text.empty() || text == "Z") return true;
  if (text.front() != '+' && text.front() != '-') return false;
  return std::ranges::all_of(text.substr(1),
                             [](char ch) { return ch == ':' || text::IsDigit(ch); });
}

// An offset after the time is ignored: the engine has converted the time to the session's zone.
std::optional<DateParts> SplitDate(std::string_view text) {
  if (!HasShape(text, kDateShape) || !IsInCalendar(text)) return std::nullopt;
  DateParts parts{.date = text.substr(0, kDateShape.size()), .time = {}, .fraction = {}};
  std::string_view rest = text.substr(kDateShape.size());
  if (rest.empty()) return parts;
  if (rest.front() != ' ' && rest.front() != 'T') return std::nullopt;
  rest.remove_prefix(1);
  for (const std::string_view shape : {kTimeShape, kShortTimeShape}) {
    if (!parts.time.empty() || !HasShape(rest, shape)) continue;
    parts.time = rest.substr(0, shape.size());
    rest.remove_prefix(shape.size());
  }
  if (parts.time.size() == kTimeShape.size()) parts.fraction = TakeFraction(rest);
  return IsOnClock(parts.time) && IsOffset(rest) ? std::optional(parts) : std::nullopt;
}

std::optional<DateParts> DateOf(const Cell& cell) {
  const auto* const text = std::get_if<std::string_view>(&cell);
  return text != nullptr ? SplitDate(*text) : std::nullopt;
}

void AppendText(const Cell& cell, std::string& out);

void AppendDate(const Cell& cell, std::string& out) {
  const auto parts = DateOf(cell);
  if (!parts) return AppendText(cell, out);
  out += parts->date;
  out += 'T';
  out += parts->time;
  out += kTimeShape.substr(parts->time.size());
  out += parts->fraction;
}

// Returns nothing for what is no truth value.
std::optional<bool> TruthOf(const Cell& cell) {
  if (const auto* number = std::get_if<std::int64_t>(&cell)) return *number != 0;
  if (const auto* number = std::get_if<double>(&cell)) return *number != 0;
  const auto* text = std::get_if<std::string_view>(&cell);
  if (text == nullptr) return std::nullopt;
  if (*text == "1" || text::EqualIgnoringCase(*text, "true")) return true;
  if (*text == "0" || text::EqualIgnoringCase(*text, "false")) return false;
  return std::nullopt;
}

void AppendTruth(const Cell& cell, std::string& out) {
  const auto truth = TruthOf(cell);
  if (!truth) return AppendText(cell, out);
  out += *truth ? "True" : "False";
}

void AppendText(const Cell& cell, std::string& out) {
  if (const auto* text = std::get_if<std::string_view>(&cell)) {
    AppendEscaped(*text, out);
  } else if (const auto* binary = std::get_if<Binary>(&cell)) {
    AppendEscaped(binary->bytes, out);
  } else if (const auto* whole = std::get_if<std::int64_t>(&cell)) {
    AppendNumber(*whole, out);
  } else if (const auto* decimal = std::get_if<double>(&cell)) {
    AppendNumber(*decimal, out);
  }
}

// Readers of integers end at the first character that is no digit, as in 1e+15.
void AppendInteger(const Cell& cell, std::string& out) {
  constexpr double kLargest = 1ULL << 53;
  const auto* const value = std::get_if<double>(&cell);
  const bool is_whole =
      value != nullptr && std::trunc(*value) == *value && std::abs(*value) <= kLargest;
  is_whole ? AppendNumber(static_cast<std::int64_t>(*value), out) : AppendText(cell, out);
}

// The types for decimals have no exponents.
void AppendDecimal(const Cell& cell, std::string& out) {
  const auto* const value = std::get_if<double>(&cell);
  if (value == nullptr) return AppendText(cell, out);
  std::array<char, 400> text;  // the smallest double has 324 decimals
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), *value, std::chars_format::fixed);
  out.append(text.data(), end.ptr);
}

void AppendBytes(BinaryForm form, std::string_view bytes, std::string& out) {
  form == BinaryForm::kHex ? AppendHex(bytes, out) : AppendBase64(bytes, out);
}

void AppendBinary(BinaryForm form, const Cell& cell, std::string& out) {
  if (const auto* binary = std::get_if<Binary>(&cell)) {
    AppendBytes(form, binary->bytes, out);
  } else if (const auto* text = std::get_if<std::string_view>(&cell)) {
    AppendBytes(form, *text, out);
  } else {
    std::string number;
    AppendText(cell, number);
    AppendBytes(form, number, out);
  }
}

// Engines that declare such a column may keep doubles in it.
void AppendSingle(const Cell& cell, std::string& out) {
  const auto* value = std::get_if<double>(&cell);
  const bool fits = value != nullptr && std::abs(*value) <= std::numeric_limits<float>::max() &&
                    static_cast<double>(static_cast<float>(*value)) == *value;
  if (fits) {
    AppendNumber(static_cast<float>(*value), out);
  } else {
    AppendText(cell, out);
  }
}

}  // namespace

bool IsMisfit(ColumnKind kind, const Cell& cell) {
  if (std::holds_alternative<std::monostate>(cell)) return false;
  switch (kind) {
    case ColumnKind::kBoolean:
      return !TruthOf(cell);
    case ColumnKind::kDate:
    case ColumnKind::kDateTime:
      return !DateOf(cell);
    default:
      return false;
  }
}

bool AppendCellText(ColumnKind kind, BinaryForm binary, const Cell& cell, std::string& out) {
  if (std::holds_alternative<std::monostate>(cell)) return false;
  switch (kind) {
    case ColumnKind::kBoolean:
      AppendTruth(cell, out);
      return true;
    case ColumnKind::kUint8:
    case ColumnKind::kInt16:
    case ColumnKind::kInt32:
    case ColumnKind::kInt64:
      AppendInteger(cell, out);
      return true;
    case ColumnKind::kDecimal:
      AppendDecimal(cell, out);
      return true;
    case ColumnKind::kSingle:
      AppendSingle(cell, out);
      return true;
    case ColumnKind::kDate:
    case ColumnKind::kDateTime:
      AppendDate(cell, out);
      return true;
    case ColumnKind::kBinary:
      AppendBinary(binary, cell, out);
      return true;
    default:
      AppendText(cell, out);
      return true;
  }
}

}  // namespace qv::standin
