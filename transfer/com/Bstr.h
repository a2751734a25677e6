// Texts as components take them.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace qv {

// A copy in UTF-16 of a text in the system's code page, for the time of one call.
class Bstr {
 public:
  explicit Bstr(const char* text);
  ~Bstr() { ::SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  // Null when there was no memory for it.
  BSTR Get() const { return text_; }

 private:
  BSTR text_;
};

// How an argument travels: texts as Bstr, anything else as it is.
inline Bstr Carried(const char* text) { return Bstr(text); }
template <class Argument>
Argument Carried(Argument argument) {
  return argument;
}

inline bool IsLost(const Bstr& text) { return text.Get() == nullptr; }
template <class Argument>
bool IsLost(const Argument&) {
  return false;
}

inline BSTR Passed(const Bstr& text) { return text.Get(); }
template <class Argument>
Argument Passed(const Argument& argument) {
  return argument;
}

}  // namespace qv
