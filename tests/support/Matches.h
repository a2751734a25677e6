// Regular expressions with classes and counts, which the test library lacks on some systems.
#pragma once

#include <gmock/gmock.h>

#include <regex>
#include <string>

namespace qv {

MATCHER_P(Matches, expression, std::string("is all of ") + expression) {
  return std::regex_match(std::string(arg), std::regex(expression));
}

}  // namespace qv
