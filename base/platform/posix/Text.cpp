#include <algorithm>
#include <cstdint>

#include "base/platform/Platform.h"
#include "base/text/Utf8.h"

namespace qv::platform {

namespace {

bool IsHighHalf(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowHalf(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Returns the character at `p` and moves `p` past it. An unpaired surrogate counts as one
// character, so that its neighbours are not lost with it.
char32_t NextCharacter(const char16_t*& p, const char16_t* end) {
  const char16_t first = *p++;
  if (!IsHighHalf(first) || p == end || !IsLowHalf(*p)) return first;
  return 0x10000 + ((first - 0xD800u) << 10) + (*p++ - 0xDC00u);
}

void AppendUtf16(char32_t character, std::u16string& wide) {
  if (character < 0x10000) {
    wide += static_cast<char16_t>(character);
  } else {
    wide += static_cast<char16_t>(0xD7C0 + (character >> 10));
    wide += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
  }
}

}  // namespace

std::optional<std::u16string> WideFromNarrow(std::string_view text) {
  std::u16string wide;
  wide.reserve(text.size());
  while (!text.empty()) {
    const text::DecodedChar next = text::DecodeUtf8(text);
    if (!next.valid) return std::nullopt;
    AppendUtf16(next.value, wide);
    text.remove_prefix(next.bytes);
  }
  return wide;
}

void AppendNarrow(std::u16string_view wide, std::string& text) {
  text.reserve(text.size() + wide.size());
  const char16_t* p = wide.data();
  const char16_t* const end = p + wide.size();
  while (p != end) {
    if (*p < 0x80) {
      text += static_cast<char>(*p++);
    } else {
      text::AppendUtf8(NextCharacter(p, end), text);
    }
  }
}

std::string NarrowFromWide(std::u16string_view wide) {
  std::string text;
  AppendNarrow(wide, text);
  return text;
}

std::size_t FolderLength(std::string_view path) { return path.rfind(kSeparator) + 1; }

std::filesystem::path PathFromNarrow(const std::string& path) { return path; }
std::string NarrowFromPath(const std::filesystem::path& path) { return path.string(); }

}  // namespace qv::platform
