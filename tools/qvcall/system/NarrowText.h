// Narrow text, which is in the system's own encoding.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv::tool {

// One character at the start of a text, and how many bytes it takes there.
struct DecodedChar {
  char32_t value;
  std::size_t bytes;
  bool valid;
};

// The first character of `text`, which is not empty. A byte that does not begin a character of
// well-formed UTF-8 stands for itself alone and is not valid.
[[nodiscard]] DecodedChar DecodeUtf8(std::string_view text);

// Stands for such a byte where text is UTF-8.
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// The first character of `text`, which is not empty. A byte that does not begin a character stands
// for itself alone and is not valid.
[[nodiscard]] DecodedChar DecodeNarrow(std::string_view text);

// What is shown in place of such a byte.
[[nodiscard]] std::string_view NoCharacter();

// The same text in UTF-8; where narrow text is that already, as it is.
[[nodiscard]] std::string Utf8FromNarrow(std::string_view text);

}  // namespace qv::tool
