#include "tools/qvcall/system/Startup.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After windows.h, whose types it uses.
#include <shellapi.h>

#include <cstdio>
#include <iostream>
#include <memory>

#include "WideText.h"

namespace qv::tool {
namespace {

bool IsConsole(DWORD which) {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(which), &mode) != FALSE;
}

// A console shows and takes lines; in all else, line ends and the sign for the end of a text are
// bytes like any other.
void LeaveBytesAlone(std::FILE* stream) {
  if (::_isatty(::_fileno(stream)) == 0) ::_setmode(::_fileno(stream), _O_BINARY);
}

}  // namespace

Startup::Startup() {
  LeaveBytesAlone(stdin);
  LeaveBytesAlone(stdout);
  // A console has a code page of its own, of older programs.
  if (IsConsole(STD_OUTPUT_HANDLE) || IsConsole(STD_ERROR_HANDLE)) {
    code_page_before_ = ::GetConsoleOutputCP();
    ::SetConsoleOutputCP(::GetACP());
  }
  std::ios::sync_with_stdio(false);
}

Startup::~Startup() {
  if (code_page_before_ == 0) return;
  std::cout.flush();
  ::SetConsoleOutputCP(code_page_before_);
}

bool Startup::HasWholeArguments() {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&::LocalFree)> all(
      ::CommandLineToArgvW(::GetCommandLineW(), &count), &::LocalFree);
  // The first is where the program stands.
  for (int i = 1; all != nullptr && i < count; ++i) {
    if (!NarrowFromWide(all.get()[i])) return false;
  }
  return true;
}

}  // namespace qv::tool
