// What the COM servers of both scripted components share.
#pragma once

#include <windows.h>

#include <oleauto.h>
#include <oleidl.h>

#include "tests/transfer/Script.h"

namespace qv::test {

// What each server defines.
struct ServerClass {
  CLSID id;
  const char* key;  // where it is registered
  IID interface_id;
  IUnknown* (*make)();
};
extern const ServerClass kServerClass;

extern Script script;

// Records that the interface was requested, if a test wants to know.
void NoteQuestion(const IID& interface_id);
// Stores why a call failed as the error information of the thread.
void Explain(const std::string& method);
// Records whether the release happened in an apartment: in the environment, which outlives the
// server.
void NoteRelease();

template <class... Args>
HRESULT Heard(const char* method, long* out, Args... args) {
  const HRESULT result = script.Call(method, out, args...);
  if (result < 0) Explain(method);
  return result;
}

inline HRESULT HeardQuestion(BSTR path, long* out) {
  const HRESULT result = script.Ask(path, out);
  if (result < 0) Explain("IsOperatorFileSuc");
  return result;
}

// An entry that notes the call, with the out value's place (or null) and the arguments.
#define QV_ENTRY(name, parameters, ...)                                                   \
  virtual HRESULT STDMETHODCALLTYPE name parameters { return Heard(#name, __VA_ARGS__); } \
  static_assert(true)
// Entries that the library never calls, by their place in the table.
#define QV_UNUSED(place) QV_ENTRY(Entry##place, (), nullptr)
#define QV_UNUSED2(a, b) \
  QV_UNUSED(a);          \
  QV_UNUSED(b)
#define QV_UNUSED4(a, b, c, d) \
  QV_UNUSED2(a, b);            \
  QV_UNUSED2(c, d)

// `Entries` is the table of the interface. The other interfaces follow it, so that no entry moves.
template <class Entries>
class Scripted final : public Entries, public ISupportErrorInfo, public IRunnableObject {
 public:
  Scripted() { ++script.alive; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    NoteQuestion(id);
    *out = nullptr;
    if (id == IID_ISupportErrorInfo && !script.silent) {
      *out = static_cast<ISupportErrorInfo*>(this);
    } else if (id == IID_IRunnableObject && script.hresults.contains("Run")) {
      *out = static_cast<IRunnableObject*>(this);
    } else if (id == IID_IUnknown || (id == kServerClass.interface_id && !script.absent)) {
      *out = static_cast<IDispatch*>(this);
    }
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
    return id == kServerClass.interface_id ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE GetRunningClass(LPCLSID) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Run(LPBINDCTX) override { return script.hresults["Run"]; }
  BOOL STDMETHODCALLTYPE IsRunning() override { return FALSE; }
  HRESULT STDMETHODCALLTYPE LockRunning(BOOL, BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetContainedObject(BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return E_NOTIMPL;
  }

 private:
  ~Scripted() {
    --script.alive;
    NoteRelease();
  }

  ULONG references_ = 1;
};

}  // namespace qv::test
