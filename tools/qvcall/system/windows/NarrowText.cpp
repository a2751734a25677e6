#include "tools/qvcall/system/NarrowText.h"

#include <windows.h>

#include <algorithm>

#include "WideText.h"

namespace qv::tool {
namespace {

// Older systems do not let a program choose UTF-8 and use their own code page.
bool CodePageIsUtf8() {
  static const bool is_utf8 = ::GetACP() == CP_UTF8;
  return is_utf8;
}

}  // namespace

std::optional<std::wstring> WideFromNarrow(std::string_view text) {
  if (text.empty()) return std::wstring();
  if (text.size() > kLongestText) return std::nullopt;
  std::wstring wide(text.size(), L'\0');  // in no code page are there more units than bytes
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

// Checked by converting back, because not every code page reports characters that it lacks.
std::optional<std::string> NarrowFromWide(std::wstring_view text) {
  std::string narrow = NearestNarrow(text);
  if (WideFromNarrow(narrow) != text) return std::nullopt;
  return narrow;
}

text::DecodedChar DecodeNarrow(std::string_view text) {
  if (CodePageIsUtf8()) return text::DecodeUtf8(text);
  const auto lead = static_cast<unsigned char>(text.front());
  const std::string_view character =
      text.substr(0, ::IsDBCSLeadByteEx(CP_ACP, lead) != FALSE ? 2 : 1);
  const std::optional<std::wstring> wide = WideFromNarrow(character);
  if (!wide || wide->size() != 1) return {lead, 1, false};
  return {static_cast<char32_t>(wide->front()), character.size(), true};
}

std::string_view NoCharacter() { return CodePageIsUtf8() ? text::kReplacement : "?"; }

std::string Utf8FromNarrow(std::string_view text) {
  if (CodePageIsUtf8() || text.empty()) return std::string(text);
  const int length = static_cast<int>(std::min(text.size(), kLongestText));
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  const int units = ::MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length);
  std::string utf8(static_cast<std::size_t>(std::max(units, 0)) * 3, '\0');
  const int bytes = ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, utf8.data(),
                                          static_cast<int>(utf8.size()), nullptr, nullptr);
  utf8.resize(static_cast<std::size_t>(std::max(bytes, 0)));
  return utf8;
}

}  // namespace qv::tool
