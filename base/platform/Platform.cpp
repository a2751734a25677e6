#include "Platform.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>

#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv::platform {

std::string NewGuid() {
  std::random_device source;
  std::array<std::uint32_t, 4> random;
  for (std::uint32_t& word : random) word = source();
  // Version 4, variant 1: made from random bits.
  const std::uint32_t version = (random[1] & 0x0FFFu) | 0x4000u;
  const std::uint32_t variant = (random[2] & 0x3FFFu) | 0x8000u;
  std::array<char, 39> text;
  std::snprintf(text.data(), text.size(), "{%08X-%04X-%04X-%04X-%04X%08X}", random[0],
                random[1] >> 16, version, variant, random[2] >> 16, random[3]);
  return text.data();
}

bool IsGuid(std::string_view text) {
  constexpr std::string_view kShape = "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}";
  static_assert(kShape.size() == kGuidLength);
  return std::equal(text.begin(), text.end(), kShape.begin(), kShape.end(), [](char c, char shape) {
    const bool is_digit = text::HexDigitValue(c) >= 0 && !text::IsLowerLetter(c);
    return shape == 'X' ? is_digit : c == shape;
  });
}

std::string FolderOf(const std::string& path) { return path.substr(0, FolderLength(path)); }

std::string WithSeparator(std::string folder) {
  const bool ends = !folder.empty() && FolderLength(folder) == folder.size();
  if (!ends || folder.back() != kSeparator) folder += kSeparator;
  return folder;
}

}  // namespace qv::platform
