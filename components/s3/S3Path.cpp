#include "S3Path.h"

#include <algorithm>

#include "base/text/Utf8.h"

namespace qv::components {

namespace {

constexpr std::size_t kLongestKey = 1024;

std::optional<S3Path> Split(std::string_view path) {
  const std::string text(path.substr(std::min(path.size(), path.find_first_not_of('/'))));
  const std::size_t slash = text.find('/');
  if (slash == 0 || slash == std::string::npos || slash + 1 == text.size()) return std::nullopt;
  S3Path split{text.substr(0, slash), text.substr(slash + 1)};
  if (!text::IsUtf8(split.key)) return std::nullopt;
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
