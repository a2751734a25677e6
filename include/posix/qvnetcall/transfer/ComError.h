// How a transfer component says that a call failed as such, where the system has no words of its
// own for it: the same names, with the accessors that hosts use.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

// How a call went: negative when it failed, else 0 or another value that the callee chose.
typedef std::int32_t HRESULT;

// The identifier of a class or an interface.
struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];

  bool operator==(const GUID&) const = default;
};

// Thrown by value when a call to a component failed; catch it by reference. Any thread may read it.
class QVNETCALL_API _com_error {
 public:
  // `component` is the interface that was called, of the kind `iid`; it stays its owner's, and is
  // not used here.
  _com_error(HRESULT error, void* component, const ::GUID& iid) noexcept;
  _com_error(const _com_error&) noexcept;
  _com_error& operator=(const _com_error&) noexcept;
  virtual ~_com_error() noexcept;

  // The negative result of the call.
  HRESULT Error() const noexcept { return error_; }
  // For a result that carries a code of its interface's own, 0x80040200 to 0x8004FFFF, how far it
  // is from the first of them; else 0.
  std::uint16_t WCode() const noexcept;
  // A short English text with the result in it. It lives as long as this object, and is its own.
  const char* ErrorMessage() const noexcept { return message_; }
  // Which interface was called.
  ::GUID GUID() const noexcept { return iid_; }
  void* Interface() const noexcept { return component_; }

 private:
  HRESULT error_;
  void* component_;
  ::GUID iid_;
  char message_[32];
};
