#include "tools/qvcall/commands/SqlInput.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

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
