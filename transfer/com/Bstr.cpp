#include "Bstr.h"

#include <new>

namespace qv {

Bstr::Bstr(const char* text) : text_(nullptr) {
  // What is no text of the code page becomes its replacement character, as it does for everybody
  // who hands texts to components.
  const int units = ::MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);  // with the NUL
  if (units > 0) text_ = ::SysAllocStringLen(nullptr, static_cast<UINT>(units - 1));
  if (text_ == nullptr) throw std::bad_alloc();
  ::MultiByteToWideChar(CP_ACP, 0, text, -1, text_, units);
}

}  // namespace qv
