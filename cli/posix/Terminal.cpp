#include "cli/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace qv {
namespace {

constexpr std::size_t kUsualWidth = 80;

bool IsDumb() {
  const char* kind = std::getenv("TERM");
  return kind == nullptr || std::string_view(kind) == "dumb";
}

}  // namespace

std::size_t TerminalWidth() {
  if (isatty(STDERR_FILENO) == 0 || IsDumb()) return 0;
  winsize size{};
  const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
  return known ? size.ws_col : kUsualWidth;
}

}  // namespace qv
