#include "RemotePath.h"

#include <algorithm>

namespace qv::components {

bool HasControls(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
  });
}

std::optional<std::string> ServerPath(std::string_view text) {
  if (text.empty() || HasControls(text)) return std::nullopt;
  std::string path(text);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

}  // namespace qv::components
