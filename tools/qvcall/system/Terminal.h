// The program's standard streams, terminal and interrupts.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace qv::tool {

// While it lives, the standard streams pass bytes unchanged, and a failed write is an error instead
// of ending the program. Must be created before the streams are used. Only one may exist at a time.
class Startup {
 public:
  Startup();
  ~Startup();
  Startup(const Startup&) = delete;
  Startup& operator=(const Startup&) = delete;

  // Whether the program received its arguments unchanged. An argument that narrow text cannot
  // represent is changed by the system, and may then name another file.
  [[nodiscard]] static bool HasWholeArguments();

 private:
  // The code page of the console. 0 if it was not changed, as it never is where there is none.
  [[maybe_unused]] unsigned code_page_before_ = 0;
};

// Returns whether standard output is a terminal.
[[nodiscard]] bool OutputIsTerminal();

// Returns how many cells a line of the terminal on standard error has. Returns 0 if there is no
// terminal, or if it cannot return to the start of a line.
[[nodiscard]] std::size_t TerminalWidth();

// Asks for a line on the terminal that the program was started from, even if its input and output
// are redirected, and does not show what is typed. Returns nullopt if there is no terminal or no
// line. Must be called before other threads are started, and while no InterruptWatch exists.
[[nodiscard]] std::optional<std::string> AskForSecret(const std::string& question);

// While it lives, an interrupt or a request to terminate runs `last_words` before it ends the
// program. They run on a thread of their own, so they may do anything that a thread may. Signals
// that the program was started to ignore stay ignored. Must be created by the thread that starts
// the other threads, before it starts them. Only one may exist at a time.
class InterruptWatch {
 public:
  explicit InterruptWatch(std::function<void()> last_words);
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qv::tool
