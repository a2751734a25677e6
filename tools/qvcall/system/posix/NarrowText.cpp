#include "tools/qvcall/system/NarrowText.h"

namespace qv::tool {

text::DecodedChar DecodeNarrow(std::string_view text) { return text::DecodeUtf8(text); }

std::string_view NoCharacter() { return text::kReplacement; }

std::string Utf8FromNarrow(std::string_view text) { return std::string(text); }

}  // namespace qv::tool
