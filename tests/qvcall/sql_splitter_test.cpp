#include "tools/qvcall/commands/SqlInput.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(SqlSplitter, SplitsOnlyBetweenStatements) {
  // Each expected statement follows its line number.
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {" ;\n-- a;\n/* b; */;\t", {}},
      {"\n-- why\n a b ; -- c\n\n/*\n*/ d;", {"3:a b", "6:d"}},
      {"a 'x;''y;' ; b", {"1:a 'x;''y;'", "1:b"}},
      {"\"x;\"\"';\";[y;'];'[';b", {"1:\"x;\"\"';\"", "1:[y;']", "1:'['", "1:b"}},
      {"a /* ';*/ b -- ';\n c;\r\nd\r\n", {"1:a /* ';*/ b -- ';\n c", "3:d"}},
      {"`x;`$$y;$$;$1", {"1:`x;`$$y;$$", "1:$1"}},
      {"a;b 'x;\n", {"1:a", "1:b 'x;\n"}},
      {"a /* b;", {"1:a"}},
  };
  for (const auto& [script, expected] : cases) {
    std::vector<std::string> statements;
    for (const auto& [text, line] : qv::tool::SplitStatements(script)) {
      statements.push_back(std::to_string(line) + ":" + std::string(text));
    }
    EXPECT_EQ(statements, expected) << script;
  }
}

}  // namespace
