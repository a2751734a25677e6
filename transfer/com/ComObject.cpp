#include "ComObject.h"

#include <comdef.h>

#include <cstring>
#include <limits>

namespace qv {

namespace {

// Bytes that are not valid in the code page become its replacement character.
BSTR Wide(const char* text) {
  const std::size_t length = std::strlen(text);
  if (length == 0) return ::SysAllocStringLen(nullptr, 0);
  if (length > std::size_t{std::numeric_limits<int>::max()}) return nullptr;
  const int bytes = static_cast<int>(length);
  const int units = ::MultiByteToWideChar(CP_ACP, 0, text, bytes, nullptr, 0);
  if (units <= 0) return nullptr;
  BSTR const wide = ::SysAllocStringLen(nullptr, static_cast<UINT>(units));
  if (wide != nullptr) ::MultiByteToWideChar(CP_ACP, 0, text, bytes, wide, units);
  return wide;
}

// In this process, as a handler for another one, in another process, on another machine.
constexpr DWORD kAnywhere =
    CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;
static_assert(kAnywhere == 23);

// Returns the failure's error information, which the caller releases, or null if the interface does
// not supply any: what is on the thread then belongs to another call.
IErrorInfo* TakeErrorInfo(IUnknown* object, const IID& iid) {
  void* found = nullptr;
  if (FAILED(object->QueryInterface(IID_ISupportErrorInfo, &found)) || found == nullptr) {
    return nullptr;
  }
  auto* const support = static_cast<ISupportErrorInfo*>(found);
  const bool says = support->InterfaceSupportsErrorInfo(iid) == S_OK;
  support->Release();
  IErrorInfo* info = nullptr;
  return says && ::GetErrorInfo(0, &info) == S_OK ? info : nullptr;
}

}  // namespace

Bstr::Bstr(const char* text) : text_(Wide(text)) {}

// An object that may live in another process must run before it is asked for its interface.
void* CreateComObject(const CLSID& class_id, const IID& iid) {
  void* made = nullptr;
  const HRESULT created = ::CoCreateInstance(class_id, nullptr, kAnywhere, IID_IUnknown, &made);
  if (FAILED(created) || made == nullptr) return nullptr;
  auto* const unknown = static_cast<IUnknown*>(made);
  void* object = nullptr;
  if (FAILED(::OleRun(unknown)) || FAILED(unknown->QueryInterface(iid, &object))) object = nullptr;
  unknown->Release();
  return object;
}

HMODULE HoldModuleOf(const void* function) {
  HMODULE module = nullptr;
  ::GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, static_cast<LPCSTR>(function),
                       &module);
  return module;
}

void RaiseComErrorOf(HRESULT error, IUnknown* object, const IID& iid) {
  throw _com_error(error, TakeErrorInfo(object, iid));
}

}  // namespace qv
