#pragma once

#include <windows.h>
// Behind it.
#include <oleauto.h>

namespace qv {

// A text of the system's code page as components take it, freed with this object.
class Bstr {
 public:
  // Throws std::bad_alloc.
  explicit Bstr(const char* text);
  ~Bstr() { ::SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  // Stays this object's.
  [[nodiscard]] BSTR Get() const { return text_; }

 private:
  BSTR text_;
};

}  // namespace qv
