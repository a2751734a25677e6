#include "ClientSql.h"

#include "base/text/Letters.h"

namespace qv::standin {

namespace {

using text::NextSqlPiece;
using text::SqlDialect;
using text::SqlPart;

// Returns the length of the name at the start of `rest`, up to a dot: a word, or one in brackets.
// Returns 0 if there is none.
std::size_t PartLength(std::string_view rest, const SqlDialect& dialect) {
  if (rest.starts_with('[')) return NextSqlPiece(rest, dialect).length;
  std::size_t length = 0;
  while (length < rest.size()) {
    const text::SqlPiece piece = NextSqlPiece(rest.substr(length), dialect);
    if (piece.part != SqlPart::kWord && piece.part != SqlPart::kDigits) break;
    length += piece.length;
  }
  return length;
}

bool IsOwner(std::string_view part) {
  if (part.starts_with('[') && part.ends_with(']')) part = part.substr(1, part.size() - 2);
  return text::EqualIgnoringCase(part, "dbo");
}

// Returns how much of the name that `rest` begins with says where the table lives.
std::size_t LocationLength(std::string_view rest, const SqlDialect& dialect) {
  const std::size_t first = PartLength(rest, dialect);
  if (first == 0 || !rest.substr(first).starts_with('.')) return 0;
  const std::size_t second = PartLength(rest.substr(first + 1), dialect);
  if (second == 0) return 0;
  if (IsOwner(rest.substr(0, first))) return first + 1;
  if (!IsOwner(rest.substr(first + 1, second))) return 0;
  const std::string_view third = rest.substr(first + 1 + second);
  if (!third.starts_with('.') || PartLength(third.substr(1), dialect) == 0) return 0;
  return first + 1 + second + 1;
}

}  // namespace

std::string WithPlainTableNames(std::string_view sql, SqlDialect dialect) {
  // Clients use these forms of names with every engine.
  dialect.has_brackets = true;
  dialect.has_signs_in_names = true;
  std::string plain;
  plain.reserve(sql.size());
  bool continues_name = false;
  while (!sql.empty()) {
    if (!continues_name) sql.remove_prefix(LocationLength(sql, dialect));
    const std::size_t name = PartLength(sql, dialect);
    const std::size_t length = name != 0 ? name : NextSqlPiece(sql, dialect).length;
    continues_name = sql[length - 1] == '.' && name == 0;
    plain += sql.substr(0, length);
    sql.remove_prefix(length);
  }
  return plain;
}

}  // namespace qv::standin
