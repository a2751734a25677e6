#include "tools/qvcall/system/NarrowText.h"

namespace qv::tool {

DecodedChar DecodeNarrow(std::string_view text) { return DecodeUtf8(text); }

std::string_view NoCharacter() { return kReplacement; }

std::string Utf8FromNarrow(std::string_view text) { return std::string(text); }

}  // namespace qv::tool
