#pragma once

#include <functional>
#include <memory>

namespace qv::tool {

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
