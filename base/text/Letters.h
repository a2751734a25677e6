// Characters of ASCII and their case, whatever the locale. Bytes above 0x7f count as none of these:
// they belong to characters of some code page and are never changed.
#pragma once

#include <algorithm>
#include <compare>
#include <cstddef>
#include <string>
#include <string_view>

namespace qv::text {

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

constexpr bool IsUpperLetter(char c) { return c >= 'A' && c <= 'Z'; }

constexpr bool IsLowerLetter(char c) { return c >= 'a' && c <= 'z'; }

constexpr bool IsLetter(char c) { return IsUpperLetter(c) || IsLowerLetter(c); }

constexpr bool IsLetterOrDigit(char c) { return IsLetter(c) || IsDigit(c); }

// The blank, and the characters from the tab to the carriage return.
constexpr bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// What a terminal, a log or a protocol of lines could obey: a byte below the blank, or DEL.
constexpr bool IsControl(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }

// The printable characters of ASCII other than the blank.
constexpr bool IsVisible(char c) { return c > ' ' && c <= '~'; }

constexpr bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

inline bool HasControls(std::string_view text) {
  return std::any_of(text.begin(), text.end(), IsControl);
}

inline bool IsVisible(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return IsVisible(c); });
}

inline bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return IsAscii(c); });
}

// Returns `text` without the white space at both ends.
constexpr std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

constexpr char ToLower(char c) { return IsUpperLetter(c) ? static_cast<char>(c - 'A' + 'a') : c; }

constexpr char ToUpper(char c) { return IsLowerLetter(c) ? static_cast<char>(c - 'a' + 'A') : c; }

inline std::string ToLower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = ToLower(c);
  return lower;
}

// Orders texts by their bytes as unsigned numbers, with letters in lower case.
constexpr std::strong_ordering CompareIgnoringCase(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (a[i] == b[i]) continue;
    const auto x = static_cast<unsigned char>(ToLower(a[i]));
    const auto y = static_cast<unsigned char>(ToLower(b[i]));
    if (x != y) return x <=> y;
  }
  return a.size() <=> b.size();
}

constexpr bool EqualIgnoringCase(char a, char b) { return ToLower(a) == ToLower(b); }

constexpr bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return EqualIgnoringCase(x, y); });
}

constexpr bool StartsWithIgnoringCase(std::string_view text, std::string_view start) {
  return EqualIgnoringCase(text.substr(0, start.size()), start);
}

// Returns where `part` first occurs in `text` from `from` on, or npos.
constexpr std::size_t FindIgnoringCase(std::string_view text, std::string_view part,
                                       std::size_t from = 0) {
  if (from > text.size()) return std::string_view::npos;
  const auto found =
      std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), part.begin(),
                  part.end(), [](char x, char y) { return EqualIgnoringCase(x, y); });
  if (found == text.end() && !part.empty()) return std::string_view::npos;
  return static_cast<std::size_t>(found - text.begin());
}

}  // namespace qv::text
