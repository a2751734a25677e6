#include "cli/Terminal.h"

#include <windows.h>

namespace qv {

std::size_t TerminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO console{};
  // Of no console, a file or a pipe, there is nothing to know.
  if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_ERROR_HANDLE), &console) == FALSE) return 0;
  const int width = console.srWindow.Right - console.srWindow.Left + 1;
  return width > 0 ? static_cast<std::size_t>(width) : 0;
}

}  // namespace qv
