// Matching of texts that contain unpredictable digits.
#pragma once

#include <gmock/gmock.h>

#include <cstring>
#include <string>

namespace qv {

// Matches if the end of a text looks like `shape`, where each '#' represents an upper-case
// hexadecimal digit.
MATCHER_P(EndsInShape, shape, std::string("ends in the shape ") + shape) {
  const std::string text = arg;
  const std::string wanted = shape;
  if (text.size() < wanted.size()) return false;
  for (std::size_t i = 0, at = text.size() - wanted.size(); i < wanted.size(); ++i, ++at) {
    const bool fits = wanted[i] == '#' ? std::strchr("0123456789ABCDEF", text[at]) != nullptr
                                       : text[at] == wanted[i];
    if (!fits) return false;
  }
  return true;
}

inline constexpr char kGuidShape[] = "{########-####-4###-####-############}";

}  // namespace qv
