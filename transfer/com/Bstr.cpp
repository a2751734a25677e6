#include "Bstr.h"

#include <cstring>
#include <limits>

namespace qv {

namespace {

// What is no text in the code page becomes its replacement character.
BSTR Wide(const char* text) {
  const std::size_t length = std::strlen(text);
  if (length == 0) return ::SysAllocStringLen(nullptr, 0);
  if (length > std::size_t{std::numeric_limits<int>::max()}) return nullptr;
  const int bytes = static_cast<int>(length);
  const int units = ::MultiByteToWideChar(CP_ACP, 0, text, bytes, nullptr, 0);
  if (units <= 0) return nullptr;
  BSTR const wide = ::SysAllocStringLen(nullptr, static_cast<UINT>(units));
  if (wide != nullptr) ::MultiByteToWideChar(CP_ACP, 0, text, bytes, wide, units);
  return wide;
}

}  // namespace

Bstr::Bstr(const char* text) : text_(Wide(text)) {}

}  // namespace qv
