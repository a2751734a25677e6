#include <algorithm>
#include <boost/nowide/utf/utf.hpp>
#include <cstdint>
#include <iterator>

#include "base/platform/Platform.h"

namespace qv::platform {

namespace {

using Utf8 = boost::nowide::utf::utf_traits<char>;
using Utf16 = boost::nowide::utf::utf_traits<char16_t>;

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighHalf(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowHalf(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Returns the character at `p` and moves `p` past it. An unpaired surrogate counts as one
// character, so that its neighbours are not lost with it.
char32_t NextCharacter(const char16_t*& p, const char16_t* end) {
  const char16_t first = *p++;
  if (!IsHighHalf(first)) return IsLowHalf(first) ? kReplacement : first;
  if (p == end || !IsLowHalf(*p)) return kReplacement;
  return 0x10000 + ((first - 0xD800u) << 10) + (*p++ - 0xDC00u);
}

}  // namespace

std::optional<std::u16string> WideFromNarrow(std::string_view text) {
  std::u16string wide;
  wide.reserve(text.size());
  const char* p = text.data();
  const char* const end = p + text.size();
  while (p != end) {
    const auto character = Utf8::decode(p, end);
    if (!boost::nowide::utf::is_valid_codepoint(character)) return std::nullopt;
    Utf16::encode(character, std::back_inserter(wide));
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
      Utf8::encode(NextCharacter(p, end), std::back_inserter(text));
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
