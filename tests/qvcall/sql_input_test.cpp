#include "tools/qvcall/commands/SqlInput.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/qvcall/commands/AnswerCache.h"

namespace {

TEST(AnswerCache, HasAFolderForEachServerAndTellsAges) {
  EXPECT_EQ(qv::tool::CacheFolderName("Plans.Example", 4000), "4000@plans.example");
  EXPECT_EQ(qv::tool::CacheFolderName("::1/..\\", 1), "1@%3a%3a1%2f..%5c");
  const std::pair<int, const char*> ages[] = {
      {-5, "0 seconds"}, {1, "1 second"},     {59, "59 seconds"}, {60, "1 minute"},
      {7199, "1 hour"},  {86399, "23 hours"}, {200'000, "2 days"}};
  for (const auto& [seconds, age] : ages) EXPECT_EQ(qv::tool::AgeText(seconds), age);
}

TEST(SqlSplitter, SplitsOnlyBetweenStatements) {
  // Each expected statement follows its line number.
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {" ;\n-- a;\n/* b; */;\t", {}},
      {"\n-- why\n a b ; -- c\n\n/*\n*/ d;", {"3:a b", "6:d"}},
      {"a 'x;' [y;] /* z; */;\n c;\r\nd\r\n", {"1:a 'x;' [y;]", "2:c", "3:d"}},
      {"a;b 'x;\n", {"1:a", "1:b 'x;\n"}},
  };
  for (const auto& [script, expected] : cases) {
    std::vector<std::string> statements;
    for (const auto& [text, line] : qv::tool::SplitStatements(script)) {
      statements.push_back(std::to_string(line) + ":" + std::string(text));
    }
    EXPECT_EQ(statements, expected) << script;
  }
}

// A statement of this length fills a request together with the database "D" and the count.
constexpr std::size_t kFilling = qv::tool::kRequestRoom - 6 - 9 - 5;

TEST(RequestSize, KnowsTheStatementsThatTheServerWillSee) {
  const struct {
    std::vector<std::size_t> lengths;
    std::size_t fitting;
  } cases[] = {
      {{1, 1, 1}, 3},
      {{kFilling}, 1},
      {{kFilling, 1}, 2},      // the second crosses the limit, and is the last
      {{kFilling, 1, 1}, 2},   // the third would be lost
      {{kFilling + 1, 1}, 1},  // the second would be lost
      {{kFilling - 6, 1, 1, 1}, 3},
      {{3 * kFilling}, 1},
  };
  const std::string text(3 * kFilling, 'x');
  for (const auto& [lengths, fitting] : cases) {
    std::vector<qv::tool::ScriptStatement> statements;
    std::size_t bytes = 6 + 9;
    for (const std::size_t length : lengths) {
      statements.push_back({std::string_view(text).substr(0, length), 1});
      bytes += length + 5;
    }
    const qv::tool::RequestSize size = qv::tool::MeasureBatch("D", statements);
    EXPECT_EQ(size.bytes, bytes);
    EXPECT_EQ(size.fitting, fitting) << lengths.size() << " of " << lengths[0];
  }
}

}  // namespace
