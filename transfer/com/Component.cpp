#include "transfer/Component.h"

#include <windows.h>
// Behind it.
#include <objbase.h>
#include <ole2.h>

#include <string>

#include "ComCsc.h"
#include "ComFtp.h"
#include "platform/Platform.h"

namespace qv {

namespace {

constexpr CLSID kFtpClass{
    0x5963B49F, 0xD05D, 0x48C5, {0x9D, 0x24, 0xF6, 0xC0, 0x90, 0x28, 0x10, 0x9A}};
constexpr CLSID kCscClass{
    0x72290314, 0x2AB3, 0x42C2, {0x9B, 0x36, 0x95, 0x0E, 0x06, 0x4F, 0xA7, 0xFE}};

// Wherever the component runs. One that may be a program of its own has to be set going before
// its interface is asked for.
constexpr DWORD kAnywhere =
    CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;
static_assert(kAnywhere == 23);

// An object of that class; null when there can be none.
template <class Dispatch>
Dispatch* CreateObject(const CLSID& class_id, const IID& interface_id) {
  void* made = nullptr;
  if (FAILED(::CoCreateInstance(class_id, nullptr, kAnywhere, IID_IUnknown, &made))) return nullptr;
  auto* const object = static_cast<IUnknown*>(made);
  void* found = nullptr;
  if (FAILED(::OleRun(object)) || FAILED(object->QueryInterface(interface_id, &found))) {
    found = nullptr;
  }
  object->Release();
  return static_cast<Dispatch*>(found);
}

// Has the component that lies beside the host's program enter itself in the system's register.
void RegisterFtpComponent() {
  const std::string folder = platform::ProgramFolder();
  void* const library = folder.empty() ? nullptr : platform::OpenLibrary(folder + "QvCoFtp.dll");
  if (library == nullptr) return;
  using Register = HRESULT(STDAPICALLTYPE*)();
  const auto enter =
      reinterpret_cast<Register>(platform::FindFunction(library, "DllRegisterServer"));
  if (enter != nullptr) static_cast<void>(enter());  // whether it helped, the next try shows
  platform::CloseLibrary(library);
}

// What the component says about its last failure, with the interface in it in any case; the
// caller's to release, or null.
IErrorInfo* ErrorInfoOf(IUnknown* component, const IID& interface_id) {
  void* found = nullptr;
  if (SUCCEEDED(component->QueryInterface(IID_ISupportErrorInfo, &found))) {
    auto* const support = static_cast<ISupportErrorInfo*>(found);
    const bool has_info = support->InterfaceSupportsErrorInfo(interface_id) == S_OK;
    support->Release();
    IErrorInfo* info = nullptr;
    if (has_info && ::GetErrorInfo(0, &info) == S_OK) return info;
  }
  ICreateErrorInfo* made = nullptr;
  if (FAILED(::CreateErrorInfo(&made))) return nullptr;
  made->SetGUID(interface_id);
  void* info = nullptr;
  made->QueryInterface(IID_IErrorInfo, &info);
  made->Release();
  return static_cast<IErrorInfo*>(info);
}

}  // namespace

void EnterApartment() { static_cast<void>(::CoInitialize(nullptr)); }
void LeaveApartment() { ::CoUninitialize(); }

IQvCoFtp* CreateFtpComponent() {
  const auto create = [] { return CreateObject<FtpDispatch>(kFtpClass, kFtpInterface); };
  FtpDispatch* object = create();
  if (object == nullptr) {
    RegisterFtpComponent();
    object = create();
  }
  return object != nullptr ? new ComFtp(object) : nullptr;
}

IQvCoCSC* CreateCscComponent() {
  auto* const object = CreateObject<CscDispatch>(kCscClass, kCscInterface);
  return object != nullptr ? new ComCsc(object) : nullptr;
}

void RaiseComError(HRESULT error, IQvCoFtp* component) {
  throw _com_error(error, ErrorInfoOf(static_cast<ComFtp*>(component)->Component(), kFtpInterface));
}
void RaiseComError(HRESULT error, IQvCoCSC* component) {
  throw _com_error(error, ErrorInfoOf(static_cast<ComCsc*>(component)->Component(), kCscInterface));
}

}  // namespace qv
