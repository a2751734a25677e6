#include "tools/qvcall/system/Terminal.h"

#include <windows.h>

#include <mutex>
#include <utility>

namespace qv::tool {
namespace {

// The system calls a plain function on a thread of its own, which finds the watch here.
std::mutex watch_lock;
const std::function<void()>* watch_words = nullptr;

BOOL WINAPI OnInterrupt(DWORD) {
  // Held while the last words run, so that the watch that owns them is not destroyed meanwhile.
  const std::lock_guard<std::mutex> lock(watch_lock);
  if (watch_words != nullptr) std::exchange(watch_words, nullptr)->operator()();
  return FALSE;  // lets the next handler, the system's, end the program
}

}  // namespace

struct InterruptWatch::State {
  std::function<void()> last_words;
};

InterruptWatch::InterruptWatch(std::function<void()> last_words)
    : state_(std::make_unique<State>(State{std::move(last_words)})) {
  {
    const std::lock_guard<std::mutex> lock(watch_lock);
    watch_words = &state_->last_words;
  }
  ::SetConsoleCtrlHandler(&OnInterrupt, TRUE);
}

InterruptWatch::~InterruptWatch() {
  ::SetConsoleCtrlHandler(&OnInterrupt, FALSE);
  const std::lock_guard<std::mutex> lock(watch_lock);
  watch_words = nullptr;
}

}  // namespace qv::tool
