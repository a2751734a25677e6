// A COM object as its bytes are: a pointer to a table of functions. Only entries that are called
// have a type, all others just keep their place; so no compiler decides on the order. And texts as
// such objects take them.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <oleauto.h>

#include <cstddef>

namespace qv {

// A copy in UTF-16 of a text in the system's code page, for the time of one call.
class Bstr {
 public:
  explicit Bstr(const char* text);
  ~Bstr() { ::SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  // Null when there was no memory for it.
  BSTR Get() const { return text_; }

 private:
  BSTR text_;
};

// How an argument travels: texts as Bstr, anything else as it is.
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

// The place of an entry that is not called.
using UnusedEntry = void*;

// The first seven entries of every table of a dual interface.
template <class Object>
struct DispatchEntries {
  ComMethod<Object, REFIID, void**> QueryInterface;
  ULONG(STDMETHODCALLTYPE* AddRef)(Object*);
  ULONG(STDMETHODCALLTYPE* Release)(Object*);
  UnusedEntry dispatch[4];
};

// Where the entry of that number stands, counted from 0.
constexpr std::size_t EntryOffset(std::size_t entry) { return entry * sizeof(void*); }

// A new object of the class, as its interface `iid`; null when it cannot be had.
[[nodiscard]] void* CreateComObject(const CLSID& class_id, const IID& iid);

// Keeps the module of a function loaded, until FreeLibrary; null when there is none.
[[nodiscard]] HMODULE HoldModuleOf(const void* function);

// Throws _com_error for a call of the interface `iid` of `object` that failed.
[[noreturn]] void RaiseComErrorOf(HRESULT error, IUnknown* object, const IID& iid);

// Owns one reference to an object, of the table that `Object` points to.
template <class Object>
class ComReference {
 public:
  explicit ComReference(Object* object)
      : object_(object),
        module_(HoldModuleOf(reinterpret_cast<const void*>(object->table->head.Release))) {}
  // The apartment may be left by now, and what COM loaded for it unloaded; the code of the object
  // must still be there.
  ~ComReference() {
    object_->table->head.Release(object_);
    if (module_ != nullptr) ::FreeLibrary(module_);
  }
  ComReference(const ComReference&) = delete;
  ComReference& operator=(const ComReference&) = delete;

  // Calls an entry; texts travel as BSTR. Never throws.
  template <class Table, class Entry, class... Args>
  HRESULT Call(Entry Table::*entry, const Args&... args) const {
    return CallCarried(object_->table->*entry, Carried(args)...);
  }

  IUnknown* Unknown() const { return reinterpret_cast<IUnknown*>(object_); }

 private:
  template <class Entry, class... Args>
  HRESULT CallCarried(Entry entry, const Args&... args) const {
    if ((IsLost(args) || ...)) {
      // What an earlier call left on the thread is not about this one.
      static_cast<void>(::SetErrorInfo(0, nullptr));
      return E_OUTOFMEMORY;
    }
    return entry(object_, Passed(args)...);
  }

  Object* object_;
  HMODULE module_;
};

}  // namespace qv
