#include "RemoteStore.h"

#include <algorithm>

#include "base/text/Letters.h"

namespace qv::components {

std::optional<std::string> ServerPath(std::string_view text) {
  if (text.empty() || text::HasControls(text)) return std::nullopt;
  std::string path(text);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

}  // namespace qv::components
