#include "RecordsetWriter.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace qv::standin {

namespace {

constexpr std::string_view kDateShape = "0000-00-00";
constexpr std::string_view kTimeShape = "00:00:00";

void AppendEscaped(std::string_view text, std::string& out) {
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t special = text.find_first_of(std::string_view("<>'&\"\0", 6), start);
    out += text.substr(start, special - start);
    if (special == std::string_view::npos) return;
    switch (text[special]) {
      case '<':
        out += "&#x3c;";
        break;
      case '>':
        out += "&#x3e;";
        break;
      case '\'':
        out += "&#x27;";
        break;
      case '&':
        out += "&#x26;";
        break;
      case '"':
        out += "&#x22;";
        break;
      default:  // a NUL, which would end the text for its reader
        break;
    }
    start = special + 1;
  }
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

bool AppendDate(std::string_view text, std::string& out) {
  if (!HasShape(text, kDateShape)) return false;
  std::string_view time = text.substr(kDateShape.size());
  if (!time.empty()) time.remove_prefix(1);
  out += text.substr(0, kDateShape.size());
  out += 'T';
  out += HasShape(time, kTimeShape) ? time.substr(0, kTimeShape.size()) : kTimeShape;
  return true;
}

bool IsTrue(const Cell& cell) {
  if (const auto* number = std::get_if<std::int64_t>(&cell)) return *number != 0;
  if (const auto* number = std::get_if<double>(&cell)) return *number != 0;
  const auto* text = std::get_if<std::string_view>(&cell);
  return text != nullptr && (*text == "true" || *text == "True" || *text == "1");
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

void AppendSingle(const Cell& cell, std::string& out) {
  const auto* value = std::get_if<double>(&cell);
  if (value != nullptr && std::abs(*value) <= std::numeric_limits<float>::max()) {
    AppendNumber(static_cast<float>(*value), out);
  } else {
    AppendText(cell, out);
  }
}

}  // namespace

bool AppendCellText(ColumnKind kind, BinaryForm binary, const Cell& cell, std::string& out) {
  if (std::holds_alternative<std::monostate>(cell)) return false;
  switch (kind) {
    case ColumnKind::kBoolean:
      out += IsTrue(cell) ? "True" : "False";
      return true;
    case ColumnKind::kSingle:
      AppendSingle(cell, out);
      return true;
    case ColumnKind::kDate:
    case ColumnKind::kDateTime: {
      const auto* text = std::get_if<std::string_view>(&cell);
      return text != nullptr && AppendDate(*text, out);
    }
    case ColumnKind::kBinary:
      AppendBinary(binary, cell, out);
      return true;
    default:
      AppendText(cell, out);
      return true;
  }
}

}  // namespace qv::standin
