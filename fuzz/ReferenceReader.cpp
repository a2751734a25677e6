#include "ReferenceReader.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

namespace qv {
namespace {

constexpr const char* kWhiteSpace = " \t\n\v\f\r";

// Names and values in the order of the text; the first of a name counts.
using Values = std::vector<std::pair<std::string, std::string>>;

bool Has(const Values& values, const std::string& name) {
  for (const auto& [key, value] : values) {
    if (key == name) return true;
  }
  return false;
}

std::string ValueOf(const Values& values, const std::string& name) {
  for (const auto& [key, value] : values) {
    if (key == name) return value;
  }
  return "";
}

// A file is read in chunks of 2 MiB, each of which ends at its first NUL.
std::string LoadedText(const std::string& file) {
  constexpr std::size_t kChunk = 2 * 1024 * 1024;
  std::string text;
  for (std::size_t at = 0; at < file.size(); at += kChunk) {
    const std::string chunk = file.substr(at, kChunk);
    text += chunk.substr(0, chunk.find('\0'));
  }
  return text;
}

// Reads attributes from `at` to `end`. With `stop_at_marker`, a "/>" outside a value ends them;
// `at` stays there.
Values ReadAttributes(const std::string& text, std::size_t& at, std::size_t end,
                      bool stop_at_marker) {
  Values values;
  std::string name;
  while (at < end) {
    if (stop_at_marker && text.compare(at, 2, "/>") == 0) break;
    const char c = text[at++];
    if (c == ' ') {
      name.clear();
    } else if (c != '=') {
      name += c;
    } else {
      if (at < end && (text[at] == '\'' || text[at] == '"')) {
        const std::size_t close = text.find(text[at], at + 1);
        if (close < end) {
          values.emplace_back(name, text.substr(at + 1, close - at - 1));
          at = close + 1;
        }
      }
      name.clear();
    }
  }
  return values;
}

struct Row {
  Values values;
  // The names of elements without a value, which are not null for all that.
  std::vector<std::string> empty_elements;
};

// The name of an element that is "<name/>" or, if the next tag follows at once, starts with
// "<name>"; else an empty text.
std::string NameOfEmpty(const std::string& tag, bool next_follows) {
  if (tag.empty()) return "";
  if (tag.back() != '/') return next_follows && tag[0] != '/' ? tag : "";
  const std::size_t last = tag.find_last_not_of(' ', tag.size() - 2);
  return tag.size() == 1 || last == std::string::npos ? "" : tag.substr(0, last + 1);
}

// Reads the child elements of a row between `at` and `end`.
Row ReadChildren(const std::string& text, std::size_t at, std::size_t end) {
  Row row;
  Values& values = row.values;
  std::string name;
  while (at < end) {
    const char c = text[at++];
    if (c == '<') {
      name.clear();
    } else if (c != '>') {
      name += c;
    } else if (at < end && text[at] == '<') {
      row.empty_elements.push_back(NameOfEmpty(name, true));
      name.clear();
      ++at;
    } else {
      row.empty_elements.push_back(NameOfEmpty(name, false));
      const std::size_t next = std::min(text.find('<', at), end);
      values.emplace_back(name, text.substr(at, next - at));
      name.clear();
      at = next;
    }
  }
  return row;
}

std::string DecodedText(const std::string& raw) {
  const std::pair<std::string, char> entities[] = {
      {"&#x3c;", '<'}, {"&#x3e;", '>'}, {"&#x27;", '\''}, {"&#x26;", '&'}, {"&#x22;", '"'}};
  std::string text;
  std::size_t at = 0;
  while (at < raw.size()) {
    bool found = false;
    for (const auto& [entity, character] : entities) {
      if (!found && raw.compare(at, entity.size(), entity) == 0) {
        text += character;
        at += entity.size();
        found = true;
      }
    }
    if (!found) text += raw[at++];
  }
  return text;
}

std::string WithoutEnds(const std::string& text) {
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

bool IsTrue(const std::string& text) {
  std::string lower;
  for (const char c : text) {
    lower += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return lower == "true";
}

bool IsOnCalendar(const ReferenceDate& date) {
  const bool leap = date.year % 4 == 0 && (date.year % 100 != 0 || date.year % 400 == 0);
  const int days[] = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return date.year >= 100 && date.year <= 9999 && date.month >= 1 && date.month <= 12 &&
         date.day >= 1 && date.day <= days[date.month - 1] && date.hour >= 0 && date.hour <= 23 &&
         date.minute >= 0 && date.minute <= 59 && date.second >= 0 && date.second <= 59;
}

bool IsZeroDay(const ReferenceDate& date) {
  return date.year == 1899 && date.month == 12 && date.day == 30 && date.hour == 0 &&
         date.minute == 0 && date.second == 0;
}

ReferenceDate DateFields(const std::string& text) {
  const auto field = [&](std::size_t at, std::size_t count) {
    return DecimalByReference(text.substr(at, count));
  };
  return {field(0, 4), field(5, 2), field(8, 2), field(11, 2), field(14, 2), field(17, 2)};
}

std::string DecodedHex(const std::string& text) {
  const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 0x57; };
  std::string bytes;
  for (std::size_t at = 0; at + 1 < text.size(); at += 2) {
    const int high = digit(text[at]);
    const int low = digit(text[at + 1]);
    if (high < 0 || high > 15 || low < 0 || low > 15) continue;
    bytes += static_cast<char>(high * 16 + low);
  }
  return bytes;
}

std::string DecodedBase64(const std::string& text) {
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::string white_space = kWhiteSpace;
  std::string bits;
  for (const char c : text) {
    if (white_space.find(c) != std::string::npos) continue;
    const std::size_t value = alphabet.find(c);
    if (value == std::string::npos) break;
    for (int bit = 5; bit >= 0; --bit) bits += (value >> bit & 1) != 0 ? '1' : '0';
  }
  std::string bytes;
  for (std::size_t at = 0; at + 8 <= bits.size(); at += 8) {
    bytes += static_cast<char>(std::stoi(bits.substr(at, 8), nullptr, 2));
  }
  return bytes;
}

void Widen(ReferenceColumn& column, std::size_t length) {
  column.display_length = std::max(column.display_length, length);
}

ReferenceCell DateCell(ReferenceColumn& column, const std::string& text) {
  if (text.size() < 19) return std::optional<ReferenceDate>();
  const ReferenceDate date = DateFields(text);
  const int length =
      std::snprintf(nullptr, 0, "%d-%d-%d %d-%d-%d", static_cast<int>(date.year),
                    static_cast<int>(date.month), static_cast<int>(date.day),
                    static_cast<int>(date.hour), static_cast<int>(date.minute), date.second);
  Widen(column, static_cast<std::size_t>(length));
  if (!IsOnCalendar(date) || IsZeroDay(date)) return std::optional<ReferenceDate>();
  return std::optional<ReferenceDate>(date);
}

using BinaryDecoder = std::string (*)(const std::string&);

ReferenceCell Cell(ReferenceColumn& column, const std::string& text, BinaryDecoder decode) {
  switch (column.type) {
    case 2:
    case 3:
    case 11:
    case 17:
    case 20: {
      const std::int32_t value =
          column.type == 11 ? (IsTrue(text) ? 1 : 0) : DecimalByReference(text);
      Widen(column, std::to_string(value).size());
      return value;
    }
    case 5: {
      char* rest = nullptr;
      const double read = std::strtod(text.c_str(), &rest);
      // Where the C library takes a sign alone for a negative zero.
      const double value = rest == text.c_str() ? 0 : read;
      Widen(column, static_cast<std::size_t>(std::snprintf(nullptr, 0, "%f", value)));
      return value;
    }
    case 7:
    case 135:
      return DateCell(column, text);
    case 205:
      if (text.empty()) return ReferenceBinary();
      return ReferenceBinary{decode(text)};
    default: {
      const std::string value = WithoutEnds(DecodedText(text));
      Widen(column, value.size());
      return value;
    }
  }
}

bool IsDigits(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

// A date's fields with zeros before them, and the milliseconds if there are any.
std::string ExactDate(const std::string& text) {
  if (text.size() == 10) {
    const bool is_date = text[4] == '-' && text[7] == '-' && IsDigits(text.substr(0, 4)) &&
                         IsDigits(text.substr(5, 2)) && IsDigits(text.substr(8, 2));
    return is_date ? text : "";
  }
  if (text.size() < 19) return "";
  const ReferenceDate date = DateFields(text);
  bool is_written_in_digits = true;
  for (const auto& [start, length] : {std::pair(0, 4), {5, 2}, {8, 2}, {11, 2}, {14, 2}, {17, 2}}) {
    const std::string field =
        text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length));
    is_written_in_digits = is_written_in_digits && IsDigits(field);
  }
  if (!is_written_in_digits && !IsOnCalendar(date)) return "";
  char exact[80];
  std::snprintf(exact, sizeof exact, "%04d-%02d-%02d %02d:%02d:%02d", date.year, date.month,
                date.day, date.hour, date.minute, date.second);
  if (text.size() == 19 || text[19] != '.') return exact;
  const std::string rest = text.substr(20, 3);
  std::string digits = rest.substr(0, rest.find_first_not_of("0123456789"));
  digits.resize(3, '0');
  return digits == "000" ? exact : std::string(exact) + "." + digits;
}

ReferenceExact Exact(int type, const std::string& text, bool is_null) {
  if (is_null) return {true, 0, ""};
  const long long integer = std::strtoll(text.c_str(), nullptr, 10);
  switch (type) {
    case 11:
      return {false, IsTrue(text) ? 1 : 0, IsTrue(text) ? "1" : "0"};
    case 2:
    case 3:
    case 17:
    case 20:
      return {false, integer, std::to_string(integer)};
    case 7:
    case 135:
      return {false, 0, ExactDate(text)};
    case 5:
    case 205:
      return {false, 0, ""};
    default: {
      const std::string value = DecodedText(text);
      return {false, std::strtoll(value.c_str(), nullptr, 10), value};
    }
  }
}

void AppendRow(ReferenceTable& table, const Row& row, BinaryDecoder decode) {
  const Values& values = row.values;
  for (ReferenceColumn& column : table.columns) {
    const std::string text = ValueOf(values, column.name);
    const auto& empty = row.empty_elements;
    const bool is_null = !Has(values, column.name) &&
                         std::find(empty.begin(), empty.end(), column.name) == empty.end();
    column.exact.push_back(Exact(column.type, text, is_null));
    column.cells.push_back(Cell(column, text, decode));
    const auto* binary = std::get_if<ReferenceBinary>(&column.cells.back());
    if (binary != nullptr && binary->bytes) table.last_binary = binary->bytes;
  }
}

void EmptyColumns(ReferenceTable& table) {
  for (ReferenceColumn& column : table.columns) {
    column.cells.clear();
    column.exact.clear();
  }
}

int RowsetType(const Values& values) {
  const std::string type = ValueOf(values, "dt:type");
  if (type == "boolean") return 11;
  if (type == "ui1") return 17;
  if (type == "i2") return 2;
  if (type == "int") return 3;
  if (type == "i8") return 20;
  if (type == "r4") return 4;
  if (type == "float") return 5;
  if (type == "number") return 131;
  if (type == "string" && ValueOf(values, "rs:fixedlength") == "true") return 129;
  if (type == "string" && ValueOf(values, "rs:long") == "true") return 201;
  if (type == "string") return 200;
  if (type == "dateTime") return ValueOf(values, "rs:precision") == "23" ? 135 : 7;
  if (type == "bin.hex") return 205;
  return 0;
}

int SchemaType(const std::string& type) {
  const std::pair<std::string, int> codes[] = {
      {"xs:boolean", 11},   {"xs:unsignedByte", 17},  {"xs:short", 2},    {"xs:int", 3},
      {"xs:long", 20},      {"xs:float", 4},          {"xs:double", 5},   {"xs:string", 200},
      {"xs:dateTime", 135}, {"xs:base64Binary", 205}, {"xs:decimal", 131}};
  for (const auto& [name, code] : codes) {
    if (name == type) return code;
  }
  return 0;
}

void DefineRowsetColumns(const std::string& text, std::size_t at, std::size_t end,
                         ReferenceTable& table) {
  const std::string opening = "<s:AttributeType";
  while (true) {
    std::size_t start = text.find(opening, at);
    if (start >= end) return;
    start += opening.size();
    const std::size_t close = text.find("</s:AttributeType", start);
    if (close >= end) return;
    const Values values = ReadAttributes(text, start, close, false);
    at = close;
    if (ValueOf(values, "name").empty()) continue;
    ReferenceColumn column{
        .name = ValueOf(values, "name"), .type = RowsetType(values), .cells = {}, .exact = {}};
    if (Has(values, "dt:maxLength")) {
      column.declared_length = DecimalByReference(ValueOf(values, "dt:maxLength"));
    }
    table.columns.push_back(column);
  }
}

void DefineSchemaColumns(const std::string& text, std::size_t at, std::size_t end,
                         ReferenceTable& table) {
  const std::string opening = "<xs:element";
  while (true) {
    std::size_t start = text.find(opening, at);
    if (start >= end) return;
    start += opening.size();
    at = text.find('>', start);
    if (at == std::string::npos) return;
    const Values values = ReadAttributes(text, start, at, false);
    if (ValueOf(values, "name").empty()) continue;
    table.columns.push_back({.name = ValueOf(values, "name"),
                             .type = SchemaType(ValueOf(values, "type")),
                             .cells = {},
                             .exact = {}});
  }
}

bool ReadSchemaRows(const std::string& text, std::size_t at, const std::string& tag,
                    ReferenceTable& table) {
  const std::string opening = "<" + tag;
  const std::string closing = "</" + tag;
  at = text.find(opening, at);
  if (at == std::string::npos) return true;
  if (text.find(closing, at + opening.size()) == std::string::npos) return false;
  while ((at = text.find(opening, at)) != std::string::npos) {
    const std::size_t start = at + opening.size();
    const std::size_t bracket = text.find('>', start);
    if (bracket != std::string::npos && bracket > start && text[bracket - 1] == '/') {
      AppendRow(table, {}, DecodedBase64);
      at = bracket + 1;
      continue;
    }
    std::size_t end = text.find(closing, start);
    at = end + closing.size();
    if (end == std::string::npos) {
      end = text.find("/>", start);
      at = end + 2;
    }
    if (end == std::string::npos) return true;
    AppendRow(table, ReadChildren(text, start, end), DecodedBase64);
  }
  return true;
}

}  // namespace

std::int32_t DecimalByReference(const std::string& text) {
  std::size_t at = text.find_first_not_of(kWhiteSpace);
  if (at == std::string::npos) return 0;
  const bool negative = text[at] == '-';
  if (text[at] == '-' || text[at] == '+') ++at;
  std::int64_t value = 0;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    value = std::min<std::int64_t>(value * 10 + (text[at] - '0'), 1LL << 40);
  }
  if (negative) value = -value;
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(
      std::min<std::int64_t>(std::max<std::int64_t>(value, Limits::min()), Limits::max()));
}

bool ReadRowsetByReference(const std::string& file, ReferenceTable& table) {
  const std::string text = LoadedText(file);
  const std::size_t type = text.find("<s:ElementType");
  if (type == std::string::npos) return false;
  const std::size_t type_end = text.find("</s:ElementType", type);
  if (type_end == std::string::npos) return false;
  DefineRowsetColumns(text, type, type_end, table);
  EmptyColumns(table);
  std::size_t at = text.find("<rs:data>", type);
  if (at == std::string::npos) return false;
  const std::string opening = "<z:row";
  while ((at = text.find(opening, at)) != std::string::npos) {
    at += opening.size();
    AppendRow(table, {ReadAttributes(text, at, text.size(), true), {}}, DecodedHex);
  }
  return true;
}

bool ReadSchemaByReference(const std::string& file, ReferenceTable& table) {
  const std::string text = LoadedText(file);
  const std::size_t schema = text.find("<xs:schema");
  if (schema == std::string::npos) return false;
  if (text.find("</xs:schema", schema) == std::string::npos) return false;
  const std::string opening = "<xs:element";
  std::size_t element = text.find(opening);
  if (element == std::string::npos) return false;
  element += opening.size();
  const std::size_t element_end = text.find('>', element);
  if (element_end == std::string::npos) return false;
  const Values values = ReadAttributes(text, element, element_end, false);
  const std::string tag = ValueOf(values, "name");
  if (tag.empty() || ValueOf(values, "msdata:MainDataTable").empty()) return false;
  const std::size_t sequence = text.find("<xs:sequence");
  const std::size_t sequence_end = text.find("</xs:sequence");
  if (sequence == std::string::npos || sequence_end == std::string::npos) return false;
  DefineSchemaColumns(text, sequence, sequence_end, table);
  EmptyColumns(table);
  return ReadSchemaRows(text, sequence, tag, table);
}

}  // namespace qv
