// Quotes, comments and words of SQL: as much of the language as it takes to find where a statement,
// a text or a name ends. Engines differ in it. Code whose safety depends on this must refuse what
// an engine could read in another way than its dialect does here.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qv::text {

struct SqlDialect {
  bool nests_comments = false;        // "/* /* */ */" is one comment
  bool lines_end_at_returns = false;  // a carriage return alone ends a "--" comment
  bool has_dollar_texts = false;      // $$a text$$ and $tag$a text$tag$
  bool has_brackets = false;          // [a name], with "]" doubled inside
  bool has_backticks = false;         // `a name`, with "`" doubled inside
  bool has_signs_in_names = false;    // "#" and "@" are parts of words
};

// For a script that may be meant for any engine: whatever one of them reads as a quote is a quote.
// Two forms are not known here, although some engines know them: quotes after a backslash, so that
// E'\';' ends before its last quote, and comments inside comments, which end at the first "*/".
inline constexpr SqlDialect kAnyEngine = {
    .has_dollar_texts = true, .has_brackets = true, .has_backticks = true};

inline constexpr SqlDialect kSqlite = {
    .has_brackets = true, .has_backticks = true, .has_signs_in_names = true};

inline constexpr SqlDialect kPostgreSql = {
    .nests_comments = true, .lines_end_at_returns = true, .has_dollar_texts = true};

enum class SqlPart {
  kBlanks,
  kComment,
  kText,       // 'a text', or in dollar signs
  kName,       // a name in double quotes, brackets or backticks
  kWord,       // a keyword or a name without quotes; never begins with a digit
  kDigits,     // whatever follows them
  kSemicolon,  // outside of all these
  kSign,       // any other character, alone
};

struct SqlPiece {
  SqlPart part;
  std::size_t length;
};

// Returns what `rest`, which must not be empty, begins with. A doubled quote does not end its
// piece; an unclosed piece extends to the end of `rest`. A backslash has no meaning: E'...' is a
// word and a text, which ends at the first single quote.
[[nodiscard]] SqlPiece NextSqlPiece(std::string_view rest, const SqlDialect& dialect);

// Takes 'a text' off the front of `rest`, and returns it without its quotes. Returns nothing if
// `rest` does not begin with a quote, or the text is not closed; then `rest` is as it was.
[[nodiscard]] std::optional<std::string> TakeSqlText(std::string_view& rest);

}  // namespace qv::text
