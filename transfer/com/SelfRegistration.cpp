#include "SelfRegistration.h"

#include <windows.h>

#include <string>

#include "platform/Platform.h"

namespace qv {

namespace {

// The component's file; empty when the system does not tell where the program stands, since the
// loader would look for a file without a folder wherever it likes.
std::string ComponentFile() {
  char program[1024] = {};
  ::GetModuleFileNameA(nullptr, program, sizeof program - 1);
  const std::string path = program;
  const std::size_t folder = platform::FolderLength(path);
  return folder != 0 ? path.substr(0, folder) + "QvCoFtp.dll" : "";
}

}  // namespace

void RegisterFtpComponent() {
  const std::string file = ComponentFile();
  if (file.empty()) return;
  const HMODULE library = ::LoadLibraryA(file.c_str());
  if (library == nullptr) return;
  using Register = HRESULT(STDAPICALLTYPE*)();
  const auto enter = reinterpret_cast<Register>(
      reinterpret_cast<void*>(::GetProcAddress(library, "DllRegisterServer")));
  if (enter != nullptr) enter();
  ::FreeLibrary(library);
}

}  // namespace qv
