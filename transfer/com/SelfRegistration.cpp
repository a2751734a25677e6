#include "SelfRegistration.h"

#include <windows.h>

#include <string>

#include "base/platform/Platform.h"

namespace qv {

void RegisterFtpComponent() {
  const std::string folder = platform::ProgramFolder();
  // The loader would look for a file without a folder wherever it likes.
  if (folder.empty()) return;
  const HMODULE library = ::LoadLibraryA((folder + "QvCoFtp.dll").c_str());
  if (library == nullptr) return;
  using Register = HRESULT(STDAPICALLTYPE*)();
  const auto enter = reinterpret_cast<Register>(
      reinterpret_cast<void*>(::GetProcAddress(library, "DllRegisterServer")));
  if (enter != nullptr) enter();
  ::FreeLibrary(library);
}

}  // namespace qv
