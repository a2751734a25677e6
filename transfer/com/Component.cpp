#include "transfer/Component.h"

#include <new>

#include "CoCSCAdapter.h"
#include "CoFtpAdapter.h"
#include "SelfRegistration.h"

namespace qv {

namespace {

constexpr CLSID kFtpClass{
    0x5963B49F, 0xD05D, 0x48C5, {0x9D, 0x24, 0xF6, 0xC0, 0x90, 0x28, 0x10, 0x9A}};
constexpr CLSID kCscClass{
    0x72290314, 0x2AB3, 0x42C2, {0x9B, 0x36, 0x95, 0x0E, 0x06, 0x4F, 0xA7, 0xFE}};

template <class Adapter, class Object>
Adapter* Create(const CLSID& class_id, const IID& iid) {
  auto* const object = static_cast<Object*>(CreateComObject(class_id, iid));
  if (object == nullptr) return nullptr;
  auto* const adapter = new (std::nothrow) Adapter(object);
  if (adapter == nullptr) object->table->head.Release(object);
  return adapter;
}

}  // namespace

// A thread that is in another kind of apartment already stays there.
void EnterApartment() { static_cast<void>(::CoInitialize(nullptr)); }
void LeaveApartment() { ::CoUninitialize(); }

IQvCoFtp* CreateFtpComponent() {
  const auto create = Create<CoFtpAdapter, CoFtpObject>;
  if (IQvCoFtp* const component = create(kFtpClass, kFtpInterface)) return component;
  RegisterFtpComponent();
  return create(kFtpClass, kFtpInterface);
}

IQvCoCSC* CreateCscComponent() {
  return Create<CoCSCAdapter, CoCSCObject>(kCscClass, kCscInterface);
}

// All components here are adapters: nobody else makes any.
void RaiseComError(HRESULT error, IQvCoFtp* component) {
  RaiseComErrorOf(error, static_cast<CoFtpAdapter*>(component)->Unknown(), kFtpInterface);
}
void RaiseComError(HRESULT error, IQvCoCSC* component) {
  RaiseComErrorOf(error, static_cast<CoCSCAdapter*>(component)->Unknown(), kCscInterface);
}

}  // namespace qv
