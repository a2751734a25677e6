#include "StoreNames.h"

#include "base/text/DeviceNames.h"

namespace qv::standin {

namespace {

constexpr std::size_t kLongestPath = 1024;
constexpr std::size_t kMostParts = 64;
constexpr std::string_view kSeparators = "\\/";

}  // namespace

bool IsStoreName(std::string_view name) { return text::IsPortableName(name); }

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
