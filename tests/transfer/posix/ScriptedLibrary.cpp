#include "tests/transfer/ScriptedLibrary.h"

#include "base/platform/Platform.h"

namespace qv::test {

const int kTries = 1;

ScriptedLibrary::ScriptedLibrary(const char* name)
    : library_(platform::OpenLibrary(platform::ProgramFolder() + "lib" + name + ".so")),
      script_(reinterpret_cast<TheScript*>(platform::FindFunction(library_, "TheScript"))()) {}

ScriptedLibrary::~ScriptedLibrary() { platform::CloseLibrary(library_); }

bool Names(const _com_error& error, const ::GUID& interface_id) {
  return error.Interface() != nullptr && error.GUID() == interface_id;
}

}  // namespace qv::test
