#include "WideText.h"

#include <windows.h>

#include <algorithm>

namespace qv::tool {

std::optional<std::wstring> WideFromNarrow(std::string_view text) {
  if (text.empty()) return std::wstring();
  if (text.size() > kLongestText) return std::nullopt;
  std::wstring wide(text.size(), L'\0');  // no code page has more units than bytes
  const int length = static_cast<int>(text.size());
  const int units =
      ::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text.data(), length, wide.data(), length);
  if (units <= 0) return std::nullopt;
  wide.resize(static_cast<std::size_t>(units));
  return wide;
}

std::string NearestNarrow(std::wstring_view text) {
  if (text.empty() || text.size() > kLongestText) return {};
  std::string narrow(text.size() * 4, '\0');
  const int bytes =
      ::WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), narrow.data(),
                            static_cast<int>(narrow.size()), nullptr, nullptr);
  narrow.resize(static_cast<std::size_t>(std::max(bytes, 0)));
  return narrow;
}

// By the way back: not every code page can be asked for what it lacks.
std::optional<std::string> NarrowFromWide(std::wstring_view text) {
  std::string narrow = NearestNarrow(text);
  if (WideFromNarrow(narrow) != text) return std::nullopt;
  return narrow;
}

}  // namespace qv::tool
