// Tests which statements clients may send to an engine, and the settings of its driver.
#include "tools/qvstandin/sql/ClientSql.h"

#include <gmock/gmock.h>

#include "tools/qvstandin/databases/OdbcDriver.h"

namespace qv::standin {
namespace {

TEST(StatementGuard, TakesTextsApartOutsideQuotesAndComments) {
  const std::pair<const char*, std::size_t> cases[] = {
      {"", 0},
      {" ;; -- select 1\n /* ; /* select */ ; */ ;", 0},
      {"select 1", 1},
      {"Select ';', \"a;\"\"b\", 'it''s; x', E'; \\n', $$; commit$$, $t1$ $$; $t1$, $1, a$b$c", 1},
      {"((select 1) union select 2); /**/ WITH n AS (select 1) select 1 -- ; x", 2},
      {"insert into t values ('D:\\docs\\', 'first; second');update t set \"commit\" = 1;", 2},
      {"select 1 -- \r; delete from t", 2},
      {"values (1); table t; explain select 1; create table t (i int)", 4}};
  for (const auto& [sql, count] : cases) {
    std::vector<std::string_view> statements;
    const Outcome outcome = GuardStatements(sql, statements);
    EXPECT_TRUE(outcome.Ok()) << sql << ": " << outcome.text;
    EXPECT_EQ(statements.size(), count) << sql;
  }
  std::vector<std::string_view> statements;
  EXPECT_TRUE(GuardStatements(" ;/* x */ (select ';') ; ; (; update t", statements).Ok());
  EXPECT_THAT(statements, testing::ElementsAre("(select ';') ", "(", "update t"));
}

TEST(StatementGuard, RefusesWhatCouldLeaveTheTransactionHoweverItIsHidden) {
  for (const char* const sql :
       {"commit", "begin", "COMMIT", "end", "abort", "rollback to s", "savepoint s", "release s",
        "start transaction", "prepare transaction 'x'", "set role x", "reset all", "do $$ $$",
        "call p()", "execute p", "copy t to program 'x'", "declare c cursor for select 1",
        "listen x", "pragma x", "attach 'x' as y", "{call p}", "1", "'select'", "\"select\" 1",
        "[select]", "$$select$$", "selectx", "se/**/lect 1",
        // after another statement
        "select 1; commit", "select 1;/* ' */commit", "select 1; -- '\n commit; --'",
        "select '/*'; commit; select '*/'", "select $a$ $b$ $a$; commit",
        "select $$'$$; commit --'", "select 1$$'$$; commit --'", "select a$$; commit; select $$",
        "select '\\'; commit; --'", "select \"'\"; commit; select \"'\"",
        "select 1 -- '\r; commit --'", "select /* /* */ ' */ 1; commit --'", "delete from t commit",
        // the end of the text depends on the meaning of a backslash
        "select E'\\''; commit; --'", "select e'\\\\'", "select 1e'\\''; commit; --'",
        "select E'a'\n'\\''; commit; --'", "select E'a' -- x\n '\\''"}) {
    std::vector<std::string_view> statements;
    EXPECT_EQ(GuardStatements(sql, statements).code, ErrorCode::kNotPermitted) << sql;
  }
}

TEST(StatementGuard, TellsAWrongWordFromAForbiddenOne) {
  const std::pair<const char*, error::Class> cases[] = {
      {"selec 1", error::kSyntax},      {"select 1; updat t", error::kSyntax},
      {"PRAGMA x", error::kNotAllowed}, {"1", error::kNotAllowed},
      {"vacuum", error::kNotAllowed},   {"commit; selec 1", error::kNotAllowed}};
  for (const auto& [sql, expected] : cases) {
    std::vector<std::string_view> statements;
    EXPECT_EQ(GuardStatements(sql, statements).error_class, expected) << sql;
  }
}

TEST(DriverSettings, AreAddedForKnownDrivers) {
  const auto whole = [](const char* text, Fetching fetching) {
    return WithDriverSettings(text::ConnectionText(text), fetching);
  };
  EXPECT_EQ(whole("Driver=Other;A=b", Fetching::kInPieces), "Driver=Other;A=b");
  EXPECT_EQ(whole("A=b; DRIVER = {PostgreSQL Unicode}; fetch=7", Fetching::kInPieces),
            "A=b; DRIVER = {PostgreSQL Unicode}; fetch=7;BoolsAsChar=0;Protocol=7.4-1;"
            "UseDeclareFetch=1");
  EXPECT_EQ(whole("driver=/usr/lib/psqlodbcw.so", Fetching::kAtOnce),
            "driver=/usr/lib/psqlodbcw.so;BoolsAsChar=0;Protocol=7.4-1");
}

}  // namespace
}  // namespace qv::standin
