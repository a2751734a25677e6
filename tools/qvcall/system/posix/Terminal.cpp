#include "tools/qvcall/system/Terminal.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace qv::tool {
namespace {

constexpr std::size_t kUsualWidth = 80;

bool IsDumb() {
  const char* kind = std::getenv("TERM");
  return kind == nullptr || std::string_view(kind) == "dumb";
}

// The terminal that the program was started from, with echo switched off.
class SilentTerminal {
 public:
  SilentTerminal() : file_(open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    is_open_ = file_ >= 0 && tcgetattr(file_, &before_) == 0;
    if (!is_open_) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    silent.c_lflag |= ECHONL;
    is_open_ = tcsetattr(file_, TCSAFLUSH, &silent) == 0;
  }
  ~SilentTerminal() {
    Restore();
    if (file_ >= 0) close(file_);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

  // Any thread may call this.
  void Restore() const {
    if (is_open_) tcsetattr(file_, TCSAFLUSH, &before_);
  }
  bool Write(std::string_view text) const {
    return is_open_ && write(file_, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  }
  std::optional<std::string> ReadLine() const {
    std::string line;
    for (char ch = 0; read(file_, &ch, 1) == 1; line += ch) {
      if (ch == '\n') return line;
    }
    return std::nullopt;
  }

 private:
  const int file_;
  bool is_open_ = false;
  termios before_{};
};

}  // namespace

// A closed pipe and a limit on the size of files must make writes fail instead of ending the
// program, so that it can clean up.
Startup::Startup() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  std::ios::sync_with_stdio(false);
}

Startup::~Startup() = default;

bool Startup::HasWholeArguments() { return true; }

bool OutputIsTerminal() { return isatty(STDOUT_FILENO) == 1; }

std::size_t TerminalWidth() {
  if (isatty(STDERR_FILENO) == 0 || IsDumb()) return 0;
  winsize size{};
  const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
  return known ? size.ws_col : kUsualWidth;
}

std::optional<std::string> AskForSecret(const std::string& question) {
  const SilentTerminal terminal;
  // Restores the echo if the user interrupts the question.
  const InterruptWatch watch([&terminal] {
    terminal.Restore();
    terminal.Write("\n");
  });
  if (!terminal.Write(question)) return std::nullopt;
  return terminal.ReadLine();
}

}  // namespace qv::tool
