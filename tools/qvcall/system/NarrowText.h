// Narrow text, which is in the system's own encoding.
#pragma once

#include <string>
#include <string_view>

#include "base/text/Utf8.h"

namespace qv::tool {

// Decodes the first character of `text`, which must not be empty. A byte that does not begin a
// character is returned alone and marked as not valid.
[[nodiscard]] text::DecodedChar DecodeNarrow(std::string_view text);

// Returns the text that is shown instead of such a byte.
[[nodiscard]] std::string_view NoCharacter();

// Converts to UTF-8. Returns `text` unchanged where narrow text is UTF-8.
[[nodiscard]] std::string Utf8FromNarrow(std::string_view text);

}  // namespace qv::tool
