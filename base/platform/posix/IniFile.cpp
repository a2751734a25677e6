#include <strings.h>

#include <fstream>
#include <string_view>

#include "base/platform/Platform.h"

namespace qv::platform {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\v\f\r";
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

std::string_view Unquoted(std::string_view value) {
  if (value.size() < 2 || value.front() != value.back()) return value;
  const bool quoted = value.front() == '"' || value.front() == '\'';
  return quoted ? value.substr(1, value.size() - 2) : value;
}

bool IsSameName(std::string_view name, std::string_view other) {
  name = Trimmed(name);
  return name.size() == other.size() && ::strncasecmp(name.data(), other.data(), name.size()) == 0;
}

}  // namespace

// Reads like the system that these files come from: everything after the first '=' is the value. No
// comment ends it and no line continues it.
std::optional<std::string> ReadIniValue(const std::string& path, const char* section,
                                        const char* key) {
  std::ifstream file(path, std::ios::binary);
  bool in_section = false;
  std::string line;
  for (bool first = true; std::getline(file, line); first = false) {
    std::string_view entry = line;
    if (first && entry.starts_with(kByteOrderMark)) entry.remove_prefix(kByteOrderMark.size());
    entry = Trimmed(entry);
    if (entry.starts_with(';')) continue;
    if (entry.starts_with('[')) {
      in_section = IsSameName(entry.substr(1, entry.find(']') - 1), section);
      continue;
    }
    const std::size_t equals = entry.find('=');
    if (!in_section || equals == std::string_view::npos) continue;
    if (!IsSameName(entry.substr(0, equals), key)) continue;
    return std::string(Unquoted(Trimmed(entry.substr(equals + 1))));
  }
  return std::nullopt;
}

}  // namespace qv::platform
