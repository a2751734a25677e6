#include "transfer/Component.h"

#include <cstdio>

#include "ComponentLibrary.h"
#include "base/platform/Platform.h"
#include "qvnetcall/transfer/ComError.h"
#include "qvnetcall/transfer/QvCoCSC.h"
#include "qvnetcall/transfer/QvCoFtp.h"

_com_error::_com_error(HRESULT error, void* component, const ::GUID& iid) noexcept
    : error_(error), component_(component), iid_(iid) {
  std::snprintf(message_, sizeof message_, "Call failed: 0x%08X", static_cast<unsigned>(error));
}

_com_error::_com_error(const _com_error&) noexcept = default;
_com_error& _com_error::operator=(const _com_error&) noexcept = default;
_com_error::~_com_error() noexcept = default;

std::uint16_t _com_error::WCode() const noexcept {
  constexpr std::uint32_t kFirst = 0x80040200;
  constexpr std::uint32_t kLast = 0x8004FFFF;
  const auto error = static_cast<std::uint32_t>(error_);
  return error >= kFirst && error <= kLast ? static_cast<std::uint16_t>(error - kFirst) : 0;
}

namespace qv {

namespace {

template <class Component>
Component* Create(const char* file, const char* function) {
  auto* const factory = reinterpret_cast<Component* (*)()>(FindFactory(file, function));
  return factory != nullptr ? factory() : nullptr;
}

}  // namespace

void* FindFactory(const char* file, const char* function) {
  const std::string folder = platform::ProgramFolder();
  // Without a folder, the loader would search for the file elsewhere.
  if (folder.empty()) return nullptr;
  void* const library = platform::OpenLibrary(folder + file);
  if (library == nullptr) return nullptr;
  void* const factory = platform::FindFunction(library, function);
  if (factory == nullptr) platform::CloseLibrary(library);
  return factory;
}

// Threads need no preparation on this system.
void EnterApartment() {}
void LeaveApartment() {}

IQvCoFtp* CreateFtpComponent() { return Create<IQvCoFtp>("libQvCoFtp.so", "QvCoFtpCreate"); }
IQvCoCSC* CreateCscComponent() { return Create<IQvCoCSC>("libQvCoCSC.so", "QvCoCSCCreate"); }

void RaiseComError(HRESULT error, IQvCoFtp* component) {
  throw _com_error(error, component, kFtpInterface);
}
void RaiseComError(HRESULT error, IQvCoCSC* component) {
  throw _com_error(error, component, kCscInterface);
}

}  // namespace qv
