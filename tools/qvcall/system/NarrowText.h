// Narrow text, which is in the system's own encoding.
#pragma once

#include <string>
#include <string_view>

#include "base/text/Utf8.h"

namespace qv::tool {

// The first character of `text`, which is not empty. A byte that does not begin a character stands
// for itself alone and is not valid.
[[nodiscard]] text::DecodedChar DecodeNarrow(std::string_view text);

// What is shown in place of such a byte.
[[nodiscard]] std::string_view NoCharacter();

// The same text in UTF-8; where narrow text is that already, as it is.
[[nodiscard]] std::string Utf8FromNarrow(std::string_view text);

}  // namespace qv::tool
