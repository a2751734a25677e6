#include "ResultWriter.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/text/Letters.h"
#include "tools/qvcall/system/NarrowText.h"

namespace qv::tool {
namespace {

// Escapes the control characters that JSON allows, which a terminal would obey: U+007F to U+009F.
void EscapeControls(std::string& utf8) {
  const auto is_control = [&](std::size_t at) {
    const auto byte = static_cast<unsigned char>(utf8[at]);
    return byte == 0x7F || (byte == 0xC2 && static_cast<unsigned char>(utf8[at + 1]) < 0xA0);
  };
  for (std::size_t at = utf8.size(); at-- != 0;) {
    if (!is_control(at)) continue;
    const std::size_t length = utf8[at] == 0x7F ? 1 : 2;
    const auto value = static_cast<unsigned char>(utf8[at + length - 1]);
    utf8.replace(at, length, fmt::format("\\u{:04x}", value));
  }
}

std::string Quoted(std::string_view text) {
  std::string quoted = nlohmann::json(Utf8FromNarrow(text))
                           .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  EscapeControls(quoted);
  return quoted;
}

// The quoted keys of every object. Names are made unique after invalid bytes were replaced, because
// names that differ only in invalid bytes become equal then.
std::vector<std::string> Keys(const CRvoDbRes& rows) {
  std::vector<std::string> keys;
  std::set<std::string> taken;
  for (int column = 0; column < rows.GetFieldCount(); ++column) {
    const std::string first = Quoted(rows.GetFiledName(column).View());
    std::string key = first;
    for (int copy = 2; !taken.insert(key).second; ++copy) {
      key = first.substr(0, first.size() - 1) + "_" + std::to_string(copy) + '"';
    }
    keys.push_back(key);
  }
  return keys;
}

// Whether `text` is a number as JSON writes it, so that it can stand there digit by digit.
bool IsJsonNumber(std::string_view text) {
  const auto skip_digits = [&text] {
    const std::size_t before = text.size();
    while (!text.empty() && text::IsDigit(text.front())) text.remove_prefix(1);
    return before != text.size();
  };
  const auto skip_one_of = [&text](std::string_view wanted) {
    const bool found = !text.empty() && wanted.find(text.front()) != std::string_view::npos;
    if (found) text.remove_prefix(1);
    return found;
  };
  skip_one_of("-");
  if (!skip_one_of("0") && !skip_digits()) return false;
  if (skip_one_of(".") && !skip_digits()) return false;
  if (skip_one_of("eE") && (skip_one_of("+-"), !skip_digits())) return false;
  return text.empty();
}

std::string Value(const CRvoDbRes& rows, int row, int column, int type) {
  if (rows.IsNull(row, column)) return "null";
  if (type == field_type::kBoolean) return rows._int64(row, column) != 0 ? "true" : "false";
  const CString text = rows._text(row, column);
  const std::string_view number = text::Trimmed(text.View());
  if (IsNumber(type) && IsJsonNumber(number)) return std::string(number);
  return Quoted(text.View());
}

}  // namespace

bool WriteJson(const CRvoDbRes& rows, std::ostream& out) {
  const std::vector<std::string> keys = Keys(rows);
  std::vector<int> types;
  types.reserve(keys.size());
  for (int column = 0; column < rows.GetFieldCount(); ++column) {
    types.push_back(rows.GetFieldType(column));
  }
  std::string line = "[";
  for (int row = 0; row < rows.GetRecordCount(); ++row) {
    line += row == 0 ? "\n{" : ",\n{";
    for (std::size_t column = 0; column < keys.size(); ++column) {
      if (column != 0) line += ',';
      line += keys[column];
      line += ':';
      line += Value(rows, row, static_cast<int>(column), types[column]);
    }
    line += '}';
    out << line;
    if (!out.good()) return false;
    line.clear();
  }
  out << line << "\n]\n";
  return out.good();
}

}  // namespace qv::tool
