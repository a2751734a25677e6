#include <windows.h>

#include <vector>

#include "base/platform/Platform.h"

namespace qv::platform {

namespace {

// No value contains this, since a value ends with its line.
constexpr const char kNone[] = "\n";
constexpr std::size_t kMostValue = std::size_t{1} << 20;

}  // namespace

std::optional<std::string> ReadIniValue(const std::string& path, const char* section,
                                        const char* key) {
  std::vector<char> value(256);
  for (;; value.resize(value.size() * 4)) {
    const DWORD length = ::GetPrivateProfileStringA(section, key, kNone, value.data(),
                                                    static_cast<DWORD>(value.size()), path.c_str());
    // A length of one less than the buffer's size means that the value was truncated.
    if (length + 1 < value.size() || value.size() > kMostValue) break;
  }
  if (value.front() == *kNone) return std::nullopt;
  return std::string(value.data());
}

}  // namespace qv::platform
