#include "StoreNames.h"

#include <algorithm>
#include <array>

namespace qv::standin {

namespace {

constexpr std::size_t kLongestPath = 1024;
constexpr std::size_t kMostParts = 64;
constexpr std::string_view kSeparators = "\\/";

bool IsForbidden(char ch) {
  const auto byte = static_cast<unsigned char>(ch);
  return byte < ' ' || byte == 0x7F ||
         std::string_view("\\/:*?\"<>|").find(ch) != std::string_view::npos;
}

std::string AsciiUpper(std::string_view text) {
  std::string upper(text);
  for (char& ch : upper) {
    if (ch >= 'a' && ch <= 'z') ch = static_cast<char>(ch - 'a' + 'A');
  }
  return upper;
}

// Some systems take these for devices in every folder, whatever follows a dot, and superscript
// digits for digits.
bool IsDevice(std::string_view name) {
  constexpr std::array<std::string_view, 6> kDevices{"CON", "PRN",    "AUX",
                                                     "NUL", "CONIN$", "CONOUT$"};
  constexpr std::array<std::string_view, 13> kNumbers{
      "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "\u00B9", "\u00B2", "\u00B3"};
  std::string_view stem = name.substr(0, name.find('.'));
  while (stem.ends_with(' ')) stem.remove_suffix(1);
  const std::string upper = AsciiUpper(stem);
  if (std::ranges::find(kDevices, upper) != kDevices.end()) return true;
  const bool is_port = upper.starts_with("COM") || upper.starts_with("LPT");
  return is_port && std::ranges::find(kNumbers, upper.substr(3)) != kNumbers.end();
}

}  // namespace

bool IsStoreName(std::string_view name) {
  // An end in a dot or a blank is dropped by some systems, so that it means another name there.
  if (name.empty() || name.ends_with('.') || name.ends_with(' ')) return false;
  return std::ranges::none_of(name, IsForbidden) && !IsDevice(name);
}

std::optional<std::vector<std::string>> PartsOf(std::string_view path) {
  if (path.size() > kLongestPath) return std::nullopt;
  std::vector<std::string> parts;
  for (;;) {
    const std::size_t end = path.find_first_of(kSeparators);
    const std::string_view part = path.substr(0, end);
    if (!IsStoreName(part) || parts.size() == kMostParts) return std::nullopt;
    parts.emplace_back(part);
    if (end == std::string_view::npos) return parts;
    path.remove_prefix(end + 1);
  }
}

}  // namespace qv::standin
