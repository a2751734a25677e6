#include <fstream>
#include <string_view>

#include "base/platform/Platform.h"
#include "base/text/Letters.h"

namespace qv::platform {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view Unquoted(std::string_view value) {
  if (value.size() < 2 || value.front() != value.back()) return value;
  const bool quoted = value.front() == '"' || value.front() == '\'';
  return quoted ? value.substr(1, value.size() - 2) : value;
}

bool IsSameName(std::string_view name, std::string_view other) {
  return text::EqualIgnoringCase(text::Trimmed(name), other);
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
    entry = text::Trimmed(entry);
    if (entry.starts_with(';')) continue;
    if (entry.starts_with('[')) {
      in_section = IsSameName(entry.substr(1, entry.find(']') - 1), section);
      continue;
    }
    const std::size_t equals = entry.find('=');
    if (!in_section || equals == std::string_view::npos) continue;
    if (!IsSameName(entry.substr(0, equals), key)) continue;
    return std::string(Unquoted(text::Trimmed(entry.substr(equals + 1))));
  }
  return std::nullopt;
}

}  // namespace qv::platform
