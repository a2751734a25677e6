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

// Switches a file or pipe to binary mode. Only a console needs line ends and the end-of-text sign
// translated.
void LeaveBytesAlone(std::FILE* stream) {
  if (::_isatty(::_fileno(stream)) == 0) ::_setmode(::_fileno(stream), _O_BINARY);
}

// The console that the program was started from, with echo switched off.
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

  // Any thread may call this.
  void Restore() const {
    if (is_open_) ::SetConsoleMode(input_, before_);
  }
  [[nodiscard]] bool IsOpen() const { return is_open_; }
  std::optional<std::string> ReadLine() const {
    // Read as wide text, because narrow text would be in the console's own code page.
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
  // A console has a code page of its own, for older programs.
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
  // The first is the path of the program.
  for (int i = 1; all != nullptr && i < count; ++i) {
    if (!NarrowFromWide(all.get()[i])) return false;
  }
  return true;
}

bool OutputIsTerminal() { return IsConsole(STD_OUTPUT_HANDLE); }

std::size_t TerminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO console{};
  // Fails if standard error is not a console.
  if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_ERROR_HANDLE), &console) == FALSE) return 0;
  const int width = console.srWindow.Right - console.srWindow.Left + 1;
  return width > 0 ? static_cast<std::size_t>(width) : 0;
}

std::optional<std::string> AskForSecret(const std::string& question) {
  const SilentConsole console;
  // Restores the echo if the user interrupts the question.
  const InterruptWatch watch([&console] { console.Restore(); });
  if (!console.IsOpen()) return std::nullopt;
  // Standard error is the console here; it is shown even if output is redirected to a file.
  std::fputs(question.c_str(), stderr);
  auto line = console.ReadLine();
  std::fputs("\n", stderr);
  return line;
}

}  // namespace qv::tool
