#include "StoreNames.h"

#include "base/text/DeviceNames.h"
#include "base/text/Letters.h"
#include "base/text/Utf8.h"

namespace qv::standin {

namespace {

constexpr std::size_t kLongestPath = 1024;
constexpr std::size_t kMostParts = 64;
constexpr std::string_view kSeparators = "\\/";

constexpr std::size_t kLongestPattern = 255;

// Returns the start of the UTF-8 character after the one at `at`.
std::size_t BehindCharacter(std::string_view text, std::size_t at) {
  do {
    ++at;
  } while (at < text.size() && text::ContinuesCharacter(text[at]));
  return at;
}

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

bool MatchesPattern(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") return true;
  if (pattern.size() > kLongestPattern) return false;
  // Backtracking only to the last star is enough: it may have to match more of the name.
  std::size_t star = std::string_view::npos;
  std::size_t behind_share = 0;
  std::size_t at = 0;
  std::size_t wanted = 0;
  while (at < name.size()) {
    const bool has_more = wanted < pattern.size();
    if (has_more && pattern[wanted] == '*') {
      star = wanted++;
      behind_share = at;
    } else if (has_more && pattern[wanted] == '?') {
      at = BehindCharacter(name, at);
      ++wanted;
    } else if (has_more && text::EqualIgnoringCase(pattern[wanted], name[at])) {
      ++at;
      ++wanted;
    } else if (star != std::string_view::npos) {
      at = behind_share = BehindCharacter(name, behind_share);
      wanted = star + 1;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', wanted) == std::string_view::npos;
}

bool NameComesBefore(std::string_view a, std::string_view b) {
  const std::strong_ordering order = text::CompareIgnoringCase(a, b);
  return std::is_lt(order) || (std::is_eq(order) && a < b);
}

}  // namespace qv::standin
