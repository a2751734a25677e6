// What the results of the library's calls mean, in words.
#pragma once

#include <iosfwd>
#include <string_view>

namespace qv {

// The calls, by the commands that make them; the same number means something else for each.
enum class Call { kQuery, kProcedure, kExec, kBatch };

// What a call went through; here, too, the same number means something else for each.
enum class Route { kSocket, kWeb, kDirect };

// A refused batch gives this and the number of the refused statement.
constexpr int kRefusedBatch = 100;

struct ReturnCode {
  int code;
  std::string_view meaning;
  std::string_view advice;  // what the user can do; empty for success
};

// The words for a result of that call; every value has some.
[[nodiscard]] ReturnCode ExplainResult(Call call, Route route, int code);

void PrintFailure(Call call, Route route, int code, std::ostream& err);

}  // namespace qv
