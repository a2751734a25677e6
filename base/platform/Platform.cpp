#include "Platform.h"

#include <algorithm>
#include <array>

#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv::platform {

std::string NewGuid() {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  constexpr std::string_view kDashBefore("\0\0\0\0-\0-\0-\0-\0\0\0\0\0", 16);
  std::array<unsigned char, 16> random;
  FillWithRandomBytes(random.data(), random.size());
  // Version 4, variant 1: made from random bits.
  random[6] = static_cast<unsigned char>((random[6] & 0x0Fu) | 0x40u);
  random[8] = static_cast<unsigned char>((random[8] & 0x3Fu) | 0x80u);
  std::string text("{");
  text.reserve(kGuidLength);
  for (std::size_t i = 0; i < random.size(); ++i) {
    if (kDashBefore[i] == '-') text += '-';
    text += {kDigits[random[i] >> 4], kDigits[random[i] & 0xFu]};
  }
  return text += '}';
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
