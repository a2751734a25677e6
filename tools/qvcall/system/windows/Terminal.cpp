#include "tools/qvcall/system/Terminal.h"

#include <windows.h>

#include <cstdio>

#include "WideText.h"
#include "tools/qvcall/system/InterruptWatch.h"

namespace qv::tool {
namespace {

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
