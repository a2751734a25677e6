// How a transfer component reports that a call as such failed, on systems that have no types of
// their own for it. The names are those of the system that has them, with the accessors that hosts
// use.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

// The outcome of a call: negative if it failed, else 0 or another value that the callee chose.
typedef std::int32_t HRESULT;

// The identifier of a class or an interface.
struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];

  bool operator==(const GUID&) const = default;
};

// Thrown by value if a call to a component failed; catch it by reference. Any thread may read it.
class QVNETCALL_API _com_error {
 public:
  // `error` is the negative result of the call, `component` the interface that was called, of the
  // kind `iid`. The component stays its owner's and is not used here.
  _com_error(HRESULT error, void* component, const ::GUID& iid) noexcept;
  _com_error(const _com_error&) noexcept;
  _com_error& operator=(const _com_error&) noexcept;
  virtual ~_com_error() noexcept;

  // Returns the negative result of the call.
  HRESULT Error() const noexcept { return error_; }
  // Returns the interface's own code if the result carries one, that is, how far the result is
  // above 0x80040200 if it is between that and 0x8004FFFF; otherwise 0.
  std::uint16_t WCode() const noexcept;
  // Returns a short English text that contains the result. The object owns it, and it lives as long
  // as the object.
  const char* ErrorMessage() const noexcept { return message_; }
  // Return the kind of the interface that was called, and the interface.
  ::GUID GUID() const noexcept { return iid_; }
  void* Interface() const noexcept { return component_; }

 private:
  HRESULT error_;
  void* component_;
  ::GUID iid_;
  char message_[32];
};
