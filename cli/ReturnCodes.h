// What the results of a query mean, in words.
#pragma once

#include <string_view>

namespace qv {

struct ReturnCode {
  int code;
  std::string_view meaning;
  std::string_view advice;  // what the user can do; empty for success
};

// The words for a result of CRvoDatabase::SelectSQL; every value has some.
[[nodiscard]] ReturnCode ExplainQueryResult(int code);

}  // namespace qv
