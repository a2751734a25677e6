// The library of a scripted component, and what differs between systems.
#pragma once

#include "Script.h"
#include "qvnetcall/transfer/ComError.h"

namespace qv::test {

// Keeps the library loaded, so that the component can only come from it.
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

// How often one call tries to create an FTP component that is not available.
extern const int kTries;

// Whether an error names the interface that was called.
bool Names(const _com_error& error, const ::GUID& interface_id);

}  // namespace qv::test
