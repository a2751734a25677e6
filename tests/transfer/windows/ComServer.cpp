#include "ComServer.h"

#include <windows.h>

#include "Registration.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace qv::test {

Script script;

std::string Shown(const wchar_t* text) {
  std::string shown;
  // Uses the length that a BSTR stores, which other strings lack.
  const UINT units = ::SysStringLen(const_cast<BSTR>(text));
  shown.resize(std::size_t{units} * 3);
  const int bytes = ::WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(units), shown.data(),
                                          static_cast<int>(shown.size()), nullptr, nullptr);
  shown.resize(static_cast<std::size_t>(bytes));
  return shown;
}

void NoteQuestion(const IID& interface_id) {
  if (interface_id == IID_IRunnableObject) script.questions.push_back("running");
  if (interface_id == kServerClass.interface_id) script.questions.push_back("own");
}

void Explain(const std::string& method) {
  ICreateErrorInfo* info = nullptr;
  if (FAILED(::CreateErrorInfo(&info))) return;
  std::wstring why(method.begin(), method.end());
  info->SetDescription(why.data());
  info->SetGUID(kServerClass.interface_id);
  void* made = nullptr;
  if (SUCCEEDED(info->QueryInterface(IID_IErrorInfo, &made))) {
    ::SetErrorInfo(0, static_cast<IErrorInfo*>(made));
    static_cast<IErrorInfo*>(made)->Release();
  }
  info->Release();
}

void NoteRelease() {
  APTTYPE type{};
  APTTYPEQUALIFIER qualifier{};
  const bool inside = SUCCEEDED(::CoGetApartmentType(&type, &qualifier));
  ::SetEnvironmentVariableA(kReleaseVariable, inside ? "inside" : "outside");
}

namespace {

class Factory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    const bool known = id == IID_IUnknown || id == IID_IClassFactory;
    *out = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** out) override {
    ++script.factory_calls;
    IUnknown* const made = kServerClass.make();
    const HRESULT result = made->QueryInterface(id, out);
    made->Release();
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

bool SetValue(const std::string& key, const char* name, const std::string& value) {
  return ::RegSetKeyValueA(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, value.c_str(),
                           static_cast<DWORD>(value.size() + 1)) == ERROR_SUCCESS;
}

}  // namespace
}  // namespace qv::test

using qv::test::kServerClass;
using qv::test::script;

STDAPI DllGetClassObject(REFCLSID class_id, REFIID id, void** out) {
  static qv::test::Factory factory;
  *out = nullptr;
  return class_id == kServerClass.id ? factory.QueryInterface(id, out) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return script.alive == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
  char file[MAX_PATH] = {};
  ::GetModuleFileNameA(reinterpret_cast<HMODULE>(&__ImageBase), file, sizeof file - 1);
  const std::string server = std::string(kServerClass.key) + "\\InprocServer32";
  return qv::test::SetValue(server, nullptr, file) &&
                 qv::test::SetValue(server, "ThreadingModel", "Apartment")
             ? S_OK
             : E_FAIL;
}

STDAPI DllUnregisterServer() {
  ::RegDeleteTreeA(HKEY_CLASSES_ROOT, kServerClass.key);
  return S_OK;
}

extern "C" qv::test::Script* TheScript() { return &script; }
