#include "S3Path.h"

#include <algorithm>
#include <cstdint>

namespace qv::components {

namespace {

constexpr std::size_t kLongestKey = 1024;

// How many bytes the character at the start of `text` has in UTF-8; 0 when it is none. Longer forms
// than needed and halves of characters are left for the server to refuse.
std::size_t CharacterLength(std::string_view text) {
  const auto first = static_cast<std::uint8_t>(text.front());
  const std::size_t length = first < 0x80    ? 1
                             : first < 0xC2  ? 0
                             : first < 0xE0  ? 2
                             : first < 0xF0  ? 3
                             : first <= 0xF4 ? 4
                                             : 0;
  if (length == 0 || length > text.size()) return 0;
  const std::string_view rest = text.substr(1, length - 1);
  const auto goes_on = [](char c) { return (static_cast<std::uint8_t>(c) & 0xC0) == 0x80; };
  return std::all_of(rest.begin(), rest.end(), goes_on) ? length : 0;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::optional<S3Path> Split(std::string_view path) {
  const std::string text(path.substr(std::min(path.size(), path.find_first_not_of('/'))));
  const std::size_t slash = text.find('/');
  if (slash == 0 || slash == std::string::npos || slash + 1 == text.size()) return std::nullopt;
  S3Path split{text.substr(0, slash), text.substr(slash + 1)};
  if (!IsUtf8(split.key)) return std::nullopt;
  return split;
}

}  // namespace

std::optional<S3Path> S3Path::OfObject(std::string_view path) {
  std::optional<S3Path> object = Split(path);
  if (!object || object->key.size() > kLongestKey || object->key.ends_with('/')) {
    return std::nullopt;
  }
  return object;
}

std::optional<S3Path> S3Path::OfFolder(std::string_view path) {
  std::optional<S3Path> folder = Split(path);
  if (!folder) return std::nullopt;
  if (folder->key.find_first_not_of('/') == std::string::npos) return std::nullopt;
  if (!folder->key.ends_with('/')) folder->key += '/';
  if (folder->key.size() > kLongestKey) return std::nullopt;
  return folder;
}

}  // namespace qv::components
