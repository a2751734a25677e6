#include "base/text/SqlText.h"

#include <algorithm>

#include "base/text/Letters.h"

namespace qv::text {

namespace {

// Returns the length of what runs through `mark`, which is looked for after the first `from`
// bytes.
std::size_t Through(std::string_view rest, std::string_view mark, std::size_t from) {
  const std::size_t found = rest.find(mark, from);
  return found == std::string_view::npos ? rest.size() : found + mark.size();
}

// The line's end is not part of the comment.
std::size_t LineCommentLength(std::string_view rest, const SqlDialect& dialect) {
  return std::min(rest.find_first_of(dialect.lines_end_at_returns ? "\r\n" : "\n"), rest.size());
}

std::size_t NestedCommentLength(std::string_view rest) {
  std::size_t at = 2;
  for (int depth = 1; depth > 0 && at < rest.size();) {
    at = std::min(rest.find_first_of("/*", at), rest.size());
    const bool opens = rest.substr(at).starts_with("/*");
    const bool closes = rest.substr(at).starts_with("*/");
    depth += opens ? 1 : closes ? -1 : 0;
    at += opens || closes ? 2 : 1;
  }
  return std::min(at, rest.size());
}

// Returns npos for what is not closed.
std::size_t ClosedLength(std::string_view rest, char close) {
  std::size_t end = rest.find(close, 1);
  while (end != std::string_view::npos && rest.substr(end + 1).starts_with(close)) {
    end = rest.find(close, end + 2);
  }
  return end == std::string_view::npos ? end : end + 1;
}

bool BeginsWord(char c, const SqlDialect& dialect) {
  return IsLetter(c) || c == '_' || !IsAscii(c) ||
         (dialect.has_signs_in_names && (c == '#' || c == '@'));
}

template <class Continues>
std::size_t RunLength(std::string_view rest, Continues continues) {
  const auto end = std::find_if_not(rest.begin(), rest.end(), continues);
  return static_cast<std::size_t>(end - rest.begin());
}

// Returns 0 if the dollar sign that `rest` begins with does not open a quoted text.
std::size_t DollarTextLength(std::string_view rest) {
  static constexpr SqlDialect kTags;
  std::size_t end = 1;
  if (end < rest.size() && BeginsWord(rest[end], kTags)) {
    end += RunLength(rest.substr(end), [](char c) { return BeginsWord(c, kTags) || IsDigit(c); });
  }
  if (end == rest.size() || rest[end] != '$') return 0;
  return Through(rest, rest.substr(0, end + 1), end + 1);
}

std::size_t QuotedLength(std::string_view rest, char close) {
  return std::min(ClosedLength(rest, close), rest.size());
}

// Returns the length of the quoted name that `rest` begins with, or 0.
std::size_t NameLength(std::string_view rest, const SqlDialect& dialect) {
  const char first = rest.front();
  if (first == '"' || (first == '`' && dialect.has_backticks)) return QuotedLength(rest, first);
  return first == '[' && dialect.has_brackets ? QuotedLength(rest, ']') : 0;
}

// Returns the length of the comment that `rest` begins with, or 0.
std::size_t CommentLength(std::string_view rest, const SqlDialect& dialect) {
  if (rest.starts_with("--")) return LineCommentLength(rest, dialect);
  if (!rest.starts_with("/*")) return 0;
  return dialect.nests_comments ? NestedCommentLength(rest) : Through(rest, "*/", 2);
}

// Returns the length of the text that `rest` begins with, or 0.
std::size_t TextLength(std::string_view rest, const SqlDialect& dialect) {
  if (rest.front() == '\'') return QuotedLength(rest, '\'');
  return rest.front() == '$' && dialect.has_dollar_texts ? DollarTextLength(rest) : 0;
}

}  // namespace

SqlPiece NextSqlPiece(std::string_view rest, const SqlDialect& dialect) {
  const char first = rest.front();
  if (IsSpace(first)) return {SqlPart::kBlanks, RunLength(rest, IsSpace)};
  if (IsDigit(first)) return {SqlPart::kDigits, RunLength(rest, IsDigit)};
  if (BeginsWord(first, dialect)) {
    const auto continues = [&](char c) { return BeginsWord(c, dialect) || IsDigit(c) || c == '$'; };
    return {SqlPart::kWord, RunLength(rest, continues)};
  }
  if (const std::size_t length = CommentLength(rest, dialect)) return {SqlPart::kComment, length};
  if (const std::size_t length = TextLength(rest, dialect)) return {SqlPart::kText, length};
  if (const std::size_t length = NameLength(rest, dialect)) return {SqlPart::kName, length};
  return {first == ';' ? SqlPart::kSemicolon : SqlPart::kSign, 1};
}

std::optional<std::string> TakeSqlText(std::string_view& rest) {
  if (!rest.starts_with('\'')) return std::nullopt;
  const std::size_t length = ClosedLength(rest, '\'');
  if (length == std::string_view::npos) return std::nullopt;
  std::string text;
  for (std::size_t at = 1; at + 1 < length; ++at) {
    text += rest[at];
    if (rest[at] == '\'') ++at;
  }
  rest.remove_prefix(length);
  return text;
}

}  // namespace qv::text
