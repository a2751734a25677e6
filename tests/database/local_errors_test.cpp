#include "database/LocalErrors.h"

#include <gtest/gtest.h>

#include <utility>

namespace qv {
namespace {

TEST(LocalErrors, AreClassedByStateOrElseByTheDriversWords) {
  const std::pair<const char*, error::Class> cases[] = {
      {"DB: [42601] ERROR: syntax error at or near \"selekt\"", error::kSyntax},
      {"DB: [42P01] ERROR: relation \"none\" does not exist", error::kUnknownObject},
      {"DB: [42703] ERROR: column \"b\" does not exist", error::kUnknownObject},
      {"DB: [42883] ERROR: function f() does not exist", error::kUnknownObject},
      {"DB: [42S02] no table", error::kUnknownObject},
      {"DB: [42501] ERROR: permission denied", error::kNotAllowed},
      {"DB: [23505] ERROR: duplicate key", error::kConstraint},
      {"DB: [42P07] ERROR: relation \"t\" already exists", error::kConstraint},
      {"DB: [22012] ERROR: division by zero", error::kConstraint},
      {"DB: [53300] ERROR: too many connections", error::kBusy},
      {"DB: [28P01] ERROR: password authentication failed", error::kCannotConnect},
      {"DB: [3D000] no such database", error::kUnknownDatabase},
      {"DB: [57014] ERROR: canceling statement due to statement timeout", error::kTimeLimit},
      {"DB: [HY001] the answer takes more memory than the limit", error::kTooLarge},
      {"DB: [08001] could not connect", error::kCannotConnect},
      {"DB: [HY000] [SQLite]near \"selekt\": syntax error (1)", error::kSyntax},
      {"DB: [HY000] [SQLite]no such table: none (1)", error::kUnknownObject},
      {"DB: [HY000] UNIQUE constraint failed: t.a (19)", error::kConstraint},
      {"DB: [HY000] something [23000] later", error::kConstraint},
      {"[42]: [HY000] unknown", error::kLocal},
      {"DB: no connection is open", error::kLocal},
      {"[", error::kLocal},
      {"[1234", error::kLocal},
      {"", error::kLocal}};
  for (const auto& [said, error_class] : cases) {
    EXPECT_EQ(ClassOfLocalError(said), error_class) << said;
  }
}

}  // namespace
}  // namespace qv
