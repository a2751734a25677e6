// Names that stand for many.
#pragma once

#include <string_view>

namespace qv::standin {

// Whether a name matches a pattern: "*" stands for any characters, "?" for one, and "*.*" for every
// name, were it without a dot. ASCII letters match in either case. A pattern of more than 255 bytes
// matches nothing.
[[nodiscard]] bool MatchesPattern(std::string_view name, std::string_view pattern);

// Whether `a` comes before `b` in a listing: letters in either case, and then byte by byte.
[[nodiscard]] bool NameComesBefore(std::string_view a, std::string_view b);

}  // namespace qv::standin
