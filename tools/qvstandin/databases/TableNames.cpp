#include "TableNames.h"

#include <algorithm>

namespace qv::standin {

namespace {

bool IsWordByte(char ch) {
  const auto byte = static_cast<unsigned char>(ch);
  return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9') ||
         ch == '_' || ch == '$' || ch == '#' || ch == '@' || byte >= 0x80;
}

std::size_t After(std::string_view sql, std::string_view end_mark, std::size_t from) {
  const std::size_t found = sql.find(end_mark, from);
  return found == std::string_view::npos ? sql.size() : found + end_mark.size();
}

// Where the quoted text or comment at `at` ends; `at` itself when there is none.
std::size_t EndOfOpaque(std::string_view sql, std::size_t at) {
  const std::string_view rest = sql.substr(at);
  if (rest.starts_with("--")) return After(sql, "\n", at);
  if (rest.starts_with("/*")) return After(sql, "*/", at + 2);
  for (const std::string_view quote : {"'", "\"", "`"}) {
    if (rest.starts_with(quote)) return After(sql, quote, at + 1);
  }
  return at;
}

// Where the word or bracketed name at `at` ends; `at` itself when there is none.
std::size_t EndOfPart(std::string_view sql, std::size_t at) {
  if (at < sql.size() && sql[at] == '[') return After(sql, "]", at);
  while (at < sql.size() && IsWordByte(sql[at])) ++at;
  return at;
}

bool IsOwner(std::string_view part) {
  if (part.starts_with('[') && part.ends_with(']')) part = part.substr(1, part.size() - 2);
  return std::ranges::equal(part, std::string_view("dbo"),
                            [](char a, char b) { return (a | ' ') == b; });
}

bool HasPartBehindDot(std::string_view sql, std::size_t dot) {
  return dot < sql.size() && sql[dot] == '.' && EndOfPart(sql, dot + 1) > dot + 1;
}

// How much of the name that starts at `at`, whose first part ends at `end`, says where the table
// lives.
std::size_t LocationLength(std::string_view sql, std::size_t at, std::size_t end) {
  if (!HasPartBehindDot(sql, end)) return 0;
  if (IsOwner(sql.substr(at, end - at))) return end + 1 - at;
  const std::size_t second_end = EndOfPart(sql, end + 1);
  if (!IsOwner(sql.substr(end + 1, second_end - end - 1))) return 0;
  return HasPartBehindDot(sql, second_end) ? second_end + 1 - at : 0;
}

}  // namespace

std::string WithPlainTableNames(std::string_view sql) {
  std::string plain;
  plain.reserve(sql.size());
  for (std::size_t at = 0; at < sql.size();) {
    std::size_t end = EndOfOpaque(sql, at);
    if (end == at) {
      end = EndOfPart(sql, at);
      const bool continues_name = at > 0 && sql[at - 1] == '.';
      if (end > at && !continues_name) {
        const std::size_t location = LocationLength(sql, at, end);
        if (location != 0) {
          at += location;
          end = EndOfPart(sql, at);
        }
      }
    }
    if (end == at) ++end;  // a blank, an operator
    plain += sql.substr(at, end - at);
    at = end;
  }
  return plain;
}

}  // namespace qv::standin
