#include "tests/transfer/ScriptedLibrary.h"

#include <windows.h>

#include "base/platform/Platform.h"

namespace qv::test {

namespace {

void Tell(void* library, const char* function) {
  reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(platform::FindFunction(library, function))();
}

}  // namespace

// The second attempt follows after another registration.
const int kTries = 2;

ScriptedLibrary::ScriptedLibrary(const char* name)
    : library_(platform::OpenLibrary(platform::ProgramFolder() + name + ".dll")),
      script_(reinterpret_cast<TheScript*>(platform::FindFunction(library_, "TheScript"))()) {
  Tell(library_, "DllRegisterServer");
}

ScriptedLibrary::~ScriptedLibrary() {
  Tell(library_, "DllUnregisterServer");
  platform::CloseLibrary(library_);
}

bool Names(const _com_error& error, const ::GUID& interface_id) {
  IErrorInfo* const info = error.ErrorInfo();
  if (info == nullptr) return false;
  ::GUID named{};
  info->GetGUID(&named);
  info->Release();
  return named == interface_id;
}

}  // namespace qv::test
