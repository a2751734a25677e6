// The library of a scripted component, and what differs between systems about it.
#pragma once

#include "Script.h"
#include "qvnetcall/transfer/ComError.h"

namespace qv::test {

// Holds the library loaded, in a way that the component can be had from it and from nowhere else.
class ScriptedLibrary {
 public:
  explicit ScriptedLibrary(const char* name);
  ~ScriptedLibrary();
  ScriptedLibrary(const ScriptedLibrary&) = delete;
  ScriptedLibrary& operator=(const ScriptedLibrary&) = delete;

  Script& GetScript() const { return *script_; }

 private:
  void* library_;
  Script* script_;
};

// How often an FTP component that cannot be had is asked for by one call.
extern const int kTries;

// Whether an error says which interface was called.
bool Names(const _com_error& error, const ::GUID& interface_id);

}  // namespace qv::test
