#include <windows.h>

#include <algorithm>
#include <limits>

#include "base/platform/Platform.h"

namespace qv::platform {

namespace {

// The most that is converted in one call: the system counts in int, and narrow text may be four
// times longer.
constexpr std::size_t kMostUnits = std::size_t{1} << 24;

bool IsHighHalf(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

// Prefers the replacement character to a look-alike. UTF-8 has no such option and lacks no
// character.
DWORD NarrowFlags() { return ::GetACP() == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS; }

}  // namespace

std::optional<std::u16string> WideFromNarrow(std::string_view text) {
  static_assert(sizeof(wchar_t) == sizeof(char16_t));
  if (text.empty()) return std::u16string();
  if (text.size() > std::size_t{std::numeric_limits<int>::max()}) return std::nullopt;
  const int length = static_cast<int>(text.size());
  std::u16string wide(text.size(), u'\0');  // no code page has more units than bytes
  const int units = ::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text.data(), length,
                                          reinterpret_cast<wchar_t*>(wide.data()), length);
  if (units <= 0) return std::nullopt;
  wide.resize(static_cast<std::size_t>(units));
  return wide;
}

void AppendNarrow(std::u16string_view wide, std::string& text) {
  while (!wide.empty()) {
    std::size_t units = std::min(wide.size(), kMostUnits);
    if (units < wide.size() && IsHighHalf(wide[units - 1])) --units;
    const auto* const from = reinterpret_cast<const wchar_t*>(wide.data());
    const std::size_t before = text.size();
    text.resize(before + units * 4);
    const int bytes =
        ::WideCharToMultiByte(CP_ACP, NarrowFlags(), from, static_cast<int>(units),
                              text.data() + before, static_cast<int>(units * 4), nullptr, nullptr);
    text.resize(before + static_cast<std::size_t>(std::max(bytes, 0)));
    wide.remove_prefix(units);
  }
}

std::string NarrowFromWide(std::u16string_view wide) {
  std::string text;
  AppendNarrow(wide, text);
  return text;
}

std::size_t FolderLength(std::string_view path) {
  std::size_t length = 0;
  for (std::size_t at = 0; at < path.size(); ++at) {
    if (::IsDBCSLeadByte(static_cast<BYTE>(path[at])) != FALSE) {
      ++at;  // the second half may equal the separator
    } else if (path[at] == '\\' || path[at] == '/') {
      length = at + 1;
    }
  }
  return length;
}

// Converted through UTF-16, because the standard library reads narrow paths by the locale.
std::filesystem::path PathFromNarrow(const std::string& path) {
  return std::filesystem::path(WideFromNarrow(path).value_or(u"?"));  // not a valid file name
}
std::string NarrowFromPath(const std::filesystem::path& path) {
  return NarrowFromWide(path.u16string());
}

}  // namespace qv::platform
