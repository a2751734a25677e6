// A COM object in its binary form: a pointer to a table of functions. Only entries that are called
// have a type; the others just keep their place. So the order does not depend on the compiler.
// Texts travel as BSTR.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <oleauto.h>

#include <cstddef>

namespace qv {

// A UTF-16 copy of a text in the system's code page, for the duration of one call.
class Bstr {
 public:
  explicit Bstr(const char* text);
  ~Bstr() { ::SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  // Returns null if there was no memory for it.
  BSTR Get() const { return text_; }

 private:
  BSTR text_;
};

// How an argument is passed: texts as Bstr, everything else unchanged.
inline Bstr Carried(const char* text) { return Bstr(text); }
template <class Argument>
Argument Carried(Argument argument) {
  return argument;
}

inline bool IsLost(const Bstr& text) { return text.Get() == nullptr; }
template <class Argument>
bool IsLost(const Argument&) {
  return false;
}

inline BSTR Passed(const Bstr& text) { return text.Get(); }
template <class Argument>
Argument Passed(const Argument& argument) {
  return argument;
}

template <class Object, class... Params>
using ComMethod = HRESULT(STDMETHODCALLTYPE*)(Object*, Params...);

// Keeps the place of an entry that is not called.
using UnusedEntry = void*;

// The first seven entries of every table of a dual interface.
template <class Object>
struct DispatchEntries {
  ComMethod<Object, REFIID, void**> QueryInterface;
  ULONG(STDMETHODCALLTYPE* AddRef)(Object*);
  ULONG(STDMETHODCALLTYPE* Release)(Object*);
  UnusedEntry dispatch[4];
};

// Returns the offset of the entry with that number, counted from 0.
constexpr std::size_t EntryOffset(std::size_t entry) { return entry * sizeof(void*); }

// Creates an object of the class and returns its interface `iid`, or null on failure.
[[nodiscard]] void* CreateComObject(const CLSID& class_id, const IID& iid);

// Keeps the module of a function loaded until FreeLibrary. Returns null if there is none.
[[nodiscard]] HMODULE HoldModuleOf(const void* function);

// Throws _com_error for a failed call of the interface `iid` of `object`.
[[noreturn]] void RaiseComErrorOf(HRESULT error, IUnknown* object, const IID& iid);

// Owns one reference to an object whose table `Object` points to.
template <class Object>
class ComReference {
 public:
  explicit ComReference(Object* object)
      : object_(object),
        module_(HoldModuleOf(reinterpret_cast<const void*>(object->table->head.Release))) {}
  // The apartment may have been left by now, and COM may have unloaded its libraries; the object's
  // code must still be there.
  ~ComReference() {
    object_->table->head.Release(object_);
    if (module_ != nullptr) ::FreeLibrary(module_);
  }
  ComReference(const ComReference&) = delete;
  ComReference& operator=(const ComReference&) = delete;

  // Calls an entry, passing texts as BSTR. Never throws.
  template <class Table, class Entry, class... Args>
  HRESULT Call(Entry Table::*entry, const Args&... args) const {
    return CallCarried(object_->table->*entry, Carried(args)...);
  }

  IUnknown* Unknown() const { return reinterpret_cast<IUnknown*>(object_); }

 private:
  template <class Entry, class... Args>
  HRESULT CallCarried(Entry entry, const Args&... args) const {
    if ((IsLost(args) || ...)) {
      // Error information that an earlier call left on the thread is not about this one.
      static_cast<void>(::SetErrorInfo(0, nullptr));
      return E_OUTOFMEMORY;
    }
    return entry(object_, Passed(args)...);
  }

  Object* object_;
  HMODULE module_;
};

}  // namespace qv
