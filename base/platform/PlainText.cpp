#include "PlainText.h"

#include <optional>

#include "Platform.h"
#include "base/text/Letters.h"
#include "base/text/Utf8.h"

namespace qv::platform {

namespace {

bool IsHighHalf(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

std::u16string WideFromAny(std::string_view text) {
  if (auto wide = WideFromNarrow(text)) return std::move(*wide);
  std::u16string ascii;
  for (const char c : text) ascii += text::IsAscii(c) ? static_cast<char16_t>(c) : u'?';
  return ascii;
}

}  // namespace

std::string PlainText(std::string_view text, std::size_t longest) {
  const std::u16string wide = WideFromAny(text);
  std::string plain;
  for (std::u16string_view rest = wide; !rest.empty();) {
    const std::u16string_view next = rest.substr(0, IsHighHalf(rest.front()) ? 2 : 1);
    const std::size_t before = plain.size();
    AppendNarrow(text::IsControlCharacter(next.front()) ? u" " : next, plain);
    if (plain.size() > longest) {
      plain.resize(before);
      break;
    }
    rest.remove_prefix(next.size());
  }
  return plain;
}

std::string NarrowFromUtf8(std::string_view text) {
  std::u16string wide;
  for (text::DecodedChar next{}; !text.empty(); text.remove_prefix(next.bytes)) {
    next = text::DecodeUtf8(text);
    const char32_t character = next.valid ? next.value : text::kReplacementCharacter;
    if (character >= 0x10000) wide += static_cast<char16_t>(0xD7C0 + (character >> 10));
    wide += static_cast<char16_t>(character < 0x10000 ? character : 0xDC00 + (character & 0x3FF));
  }
  return NarrowFromWide(wide);
}

}  // namespace qv::platform
