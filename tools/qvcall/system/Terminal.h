// The standard streams, the terminal and interrupts.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace qv::tool {

// Makes the standard streams carry bytes as they are, and a failed write to them an error, as long
// as it lives. Before the first use of the streams; one at a time.
class Startup {
 public:
  Startup();
  ~Startup();
  Startup(const Startup&) = delete;
  Startup& operator=(const Startup&) = delete;

  // Whether the program was given its arguments as they were written. Where narrow text cannot say
  // them, it is given others, which may be the names of other files.
  [[nodiscard]] static bool HasWholeArguments();

 private:
  unsigned code_page_before_ = 0;  // of the console; 0 when it was left as it is
};

// How many cells a line of the terminal has that standard error goes to; 0 when it goes to none, or
// to one that cannot go back to the start of a line.
[[nodiscard]] std::size_t TerminalWidth();

// Asks for a line on the terminal that the program was started from, wherever its input and output
// go, and does not show what is typed. Nothing when there is no terminal, or no line comes. Before
// any other thread is made, and while nobody else watches for interrupts.
[[nodiscard]] std::optional<std::string> AskForSecret(const std::string& question);

// While it lives, a user's interrupt (or being told to end) runs `last_words` before the program
// ends by it. They run on a thread of their own, so they may do whatever threads may. What the
// program was started to ignore stays ignored. Made on the thread that starts the others, before
// them; one at a time.
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
