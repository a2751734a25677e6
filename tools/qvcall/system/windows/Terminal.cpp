#include "tools/qvcall/system/Terminal.h"

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

// The console that typed text comes from, without the echo of it.
class SilentConsole {
 public:
  SilentConsole()
      : input_(::CreateFileW(L"CONIN$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                             OPEN_EXISTING, 0, nullptr)) {
    is_open_ = input_ != INVALID_HANDLE_VALUE && ::GetConsoleMode(input_, &before_) != FALSE &&
               ::SetConsoleMode(input_, before_ & ~static_cast<DWORD>(ENABLE_ECHO_INPUT)) != FALSE;
  }
  ~SilentConsole() {
    Restore();
    if (input_ != INVALID_HANDLE_VALUE) ::CloseHandle(input_);
  }
  SilentConsole(const SilentConsole&) = delete;
  SilentConsole& operator=(const SilentConsole&) = delete;

  // Any thread.
  void Restore() const {
    if (is_open_) ::SetConsoleMode(input_, before_);
  }
  [[nodiscard]] bool IsOpen() const { return is_open_; }
  std::optional<std::string> ReadLine() const {
    // Not as narrow text, which is in a code page of the console's own.
    std::wstring line;
    DWORD read = 0;
    for (wchar_t ch = 0; ::ReadConsoleW(input_, &ch, 1, &read, nullptr) != FALSE && read == 1;
         line += ch) {
      if (ch != L'\n') continue;
      if (!line.empty() && line.back() == L'\r') line.pop_back();
      return NarrowFromWide(line);
    }
    return std::nullopt;
  }

 private:
  const HANDLE input_;
  bool is_open_ = false;
  DWORD before_ = 0;
};

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

std::size_t TerminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO console{};
  // Of no console, a file or a pipe, there is nothing to know.
  if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_ERROR_HANDLE), &console) == FALSE) return 0;
  const int width = console.srWindow.Right - console.srWindow.Left + 1;
  return width > 0 ? static_cast<std::size_t>(width) : 0;
}

std::optional<std::string> AskForSecret(const std::string& question) {
  const SilentConsole console;
  // Whoever is interrupted here gets back a console that shows what is typed.
  const InterruptWatch watch([&console] { console.Restore(); });
  if (!console.IsOpen()) return std::nullopt;
  // The console belongs to standard error here, which is shown even when output goes to a file.
  std::fputs(question.c_str(), stderr);
  auto line = console.ReadLine();
  std::fputs("\n", stderr);
  return line;
}

}  // namespace qv::tool
