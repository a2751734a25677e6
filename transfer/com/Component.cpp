#include "transfer/Component.h"

#include <windows.h>

#include <new>
#include <string>

#include "CoCSCAdapter.h"
#include "CoFtpAdapter.h"
#include "base/platform/Platform.h"

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

// Lets the FTP component beside the running program register itself, if the file exists and
// supports it. The result is ignored.
void RegisterFtpComponent() {
  const std::string folder = platform::ProgramFolder();
  // Without a folder, the loader would search for the file elsewhere.
  if (folder.empty()) return;
  const HMODULE library = ::LoadLibraryA((folder + "QvCoFtp.dll").c_str());
  if (library == nullptr) return;
  using Register = HRESULT(STDAPICALLTYPE*)();
  const auto enter = reinterpret_cast<Register>(
      reinterpret_cast<void*>(::GetProcAddress(library, "DllRegisterServer")));
  if (enter != nullptr) enter();
  ::FreeLibrary(library);
}

}  // namespace

// A thread that is already in another kind of apartment stays there.
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

// All components here are adapters: nothing else creates any.
void RaiseComError(HRESULT error, IQvCoFtp* component) {
  RaiseComErrorOf(error, static_cast<CoFtpAdapter*>(component)->Unknown(), kFtpInterface);
}
void RaiseComError(HRESULT error, IQvCoCSC* component) {
  RaiseComErrorOf(error, static_cast<CoCSCAdapter*>(component)->Unknown(), kCscInterface);
}

}  // namespace qv
