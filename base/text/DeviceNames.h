// Names of files that every system can have. Windows takes some names for devices in whatever
// folder, and cannot have others at all; a file from there or for there has none of these.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "base/text/Letters.h"

namespace qv::text {

namespace internal {

// Names are judged in whatever characters the system takes them in: bytes, or units of UTF-16.
template <class Char>
constexpr bool IsSameIgnoringCase(std::basic_string_view<Char> name, std::string_view ascii) {
  return std::equal(name.begin(), name.end(), ascii.begin(), ascii.end(), [](Char a, char b) {
    return a == static_cast<Char>(ToLower(b)) || a == static_cast<Char>(ToUpper(b));
  });
}

// Superscript digits count as digits there, in UTF-16 as well as in Latin-1 and UTF-8.
template <class Char>
constexpr bool IsPortNumber(std::basic_string_view<Char> number) {
  if constexpr (sizeof(Char) == 1) {
    if (number.size() == 2 && number.front() == static_cast<Char>(0xC2)) number.remove_prefix(1);
  }
  if (number.size() != 1) return false;
  const Char digit = number.front();
  return (digit >= Char{'0'} && digit <= Char{'9'}) || digit == static_cast<Char>(0xB9) ||
         digit == static_cast<Char>(0xB2) || digit == static_cast<Char>(0xB3);
}

}  // namespace internal

// Returns whether Windows takes `name` for a device: "CON", "nul.txt", "COM1 .a". What follows a
// dot does not matter, nor do blanks before it.
template <class Char>
constexpr bool IsDeviceName(std::basic_string_view<Char> name) {
  constexpr std::array<std::string_view, 7> kDevices = {"CON",    "PRN",     "AUX",   "NUL",
                                                        "CONIN$", "CONOUT$", "CLOCK$"};
  std::basic_string_view<Char> stem = name.substr(0, name.find(Char{'.'}));
  while (!stem.empty() && stem.back() == Char{' '}) stem.remove_suffix(1);
  const auto is = [&](std::string_view device) {
    return internal::IsSameIgnoringCase(stem, device);
  };
  if (std::any_of(kDevices.begin(), kDevices.end(), is)) return true;
  const auto kind = stem.substr(0, 3);
  return (internal::IsSameIgnoringCase(kind, "COM") || internal::IsSameIgnoringCase(kind, "LPT")) &&
         internal::IsPortNumber(stem.substr(3));
}

// Returns whether a file can have this name, and no other than this, on every system: a name
// without separators, wildcards, drives, streams and control characters, which does not end in a
// dot or a blank (Windows drops those) and is not a device. So "." and ".." are refused too.
template <class Char>
constexpr bool IsPortableName(std::basic_string_view<Char> name) {
  constexpr std::string_view kReserved = "\\/:*?\"<>|\x7f";
  if (name.empty() || name.back() == Char{'.'} || name.back() == Char{' '}) return false;
  const auto is_forbidden = [&](Char c) {
    return std::char_traits<Char>::to_int_type(c) < ' ' ||
           std::any_of(kReserved.begin(), kReserved.end(), [c](char r) { return c == Char(r); });
  };
  return std::none_of(name.begin(), name.end(), is_forbidden) && !IsDeviceName(name);
}

}  // namespace qv::text
