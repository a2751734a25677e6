#include "base/text/SqlText.h"

#include <gtest/gtest.h>

#include <string>

namespace qv::text {
namespace {

// The pieces of `sql`, each with the letter of its kind before it; without blanks.
std::string PiecesOf(std::string_view sql, const SqlDialect& dialect) {
  constexpr std::string_view kLetters = "_ctnwd;s";
  std::string pieces;
  while (!sql.empty()) {
    const auto [part, length] = NextSqlPiece(sql, dialect);
    if (length == 0 || length > sql.size()) return "a piece of " + std::to_string(length);
    if (part != SqlPart::kBlanks) {
      pieces += pieces.empty() ? "" : " ";
      pieces += kLetters[static_cast<std::size_t>(part)];
      pieces += ':';
      pieces += sql.substr(0, length);
    }
    sql.remove_prefix(length);
  }
  return pieces;
}

TEST(SqlText, FallsIntoPiecesByDialect) {
  constexpr SqlDialect kNone;
  const struct {
    const SqlDialect& dialect;
    const char* sql;
    const char* pieces;
  } cases[] = {
      // The same everywhere.
      {kNone, " \t\r\n\v\f", ""},
      {kNone, "select_1 12ab;-x", "w:select_1 d:12 w:ab ;:; s:- w:x"},
      {kNone, "'it''s;' ''''x", "t:'it''s;' t:'''' w:x"},
      {kNone, "\"a\"\"';\" 'open;", "n:\"a\"\"';\" t:'open;"},
      {kNone, "e'\\';'", "w:e t:'\\' ;:; t:'"},
      {kNone, "a--';\nb/*';*/c/*/d*/e", "w:a c:--'; w:b c:/*';*/ w:c c:/*/d*/ w:e"},
      {kNone, "a/*open;", "w:a c:/*open;"},
      {kNone, "表.a$b", "w:表 s:. w:a$b"},
      // Comments.
      {kNone, "/*/**/a*/", "c:/*/**/ w:a s:* s:/"},
      {kPostgreSql, "/*/**/a*/b", "c:/*/**/a*/ w:b"},
      {kPostgreSql, "/*/**/a", "c:/*/**/a"},
      {kNone, "--a\rb", "c:--a\rb"},
      {kPostgreSql, "--a\rb", "c:--a w:b"},
      // Brackets and backticks.
      {kNone, "[a;]`", "s:[ w:a ;:; s:] s:`"},
      {kAnyEngine, "[a;']][] `b``;`[open", "n:[a;']][] n:`b``;` n:[open"},
      {kPostgreSql, "[']", "s:[ t:']"},
      // Texts in dollar signs.
      {kSqlite, "$$a$$", "s:$ s:$ w:a$$"},
      {kPostgreSql, "$$;'$$ $t1$ $$; $t1$x", "t:$$;'$$ t:$t1$ $$; $t1$ w:x"},
      {kPostgreSql, "$1 $a a$$;$1$;$", "s:$ d:1 s:$ w:a w:a$$ ;:; s:$ d:1 s:$ ;:; s:$"},
      {kPostgreSql, "1$$;$$ $$open;", "d:1 t:$$;$$ t:$$open;"},
      // Signs in names.
      {kPostgreSql, "#a@b", "s:# w:a s:@ w:b"},
      {kSqlite, "#a@b", "w:#a@b"},
  };
  for (const auto& [dialect, sql, pieces] : cases) EXPECT_EQ(PiecesOf(sql, dialect), pieces) << sql;
}

TEST(SqlText, LosesItsQuotes) {
  const struct {
    std::string_view sql;
    std::optional<std::string> text;
    std::string_view rest;
  } cases[] = {{"'it''s', 1", "it's", ", 1"},
               {"''", "", ""},
               {"''''''a", "''", "a"},
               {"'open", {}, "'open"},
               {"'''", {}, "'''"},
               {"a'b'", {}, "a'b'"},
               {"", {}, ""}};
  for (const auto& [sql, text, rest] : cases) {
    std::string_view left = sql;
    EXPECT_EQ(TakeSqlText(left), text) << sql;
    EXPECT_EQ(left, rest) << sql;
  }
}

}  // namespace
}  // namespace qv::text
