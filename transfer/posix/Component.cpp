#include "transfer/Component.h"

#include "ComponentLibrary.h"
#include "qvnetcall/transfer/QvCoCSC.h"
#include "qvnetcall/transfer/QvCoFtp.h"

namespace qv {

namespace {

template <class Component>
Component* Create(const char* file, const char* function) {
  auto* const factory = reinterpret_cast<Component* (*)()>(FindFactory(file, function));
  return factory != nullptr ? factory() : nullptr;
}

}  // namespace

// Threads need no preparation here.
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
