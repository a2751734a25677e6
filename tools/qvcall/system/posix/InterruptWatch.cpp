#include "tools/qvcall/system/Terminal.h"

#include <pthread.h>

#include <atomic>
#include <csignal>
#include <thread>
#include <utility>

namespace qv::tool {
namespace {

// Wakes the watching thread when the watch is over. Sent by another process, it ends the program as
// usual.
constexpr int kWake = SIGUSR1;

bool IsIgnored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t WatchedSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, kWake);
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
    if (!IsIgnored(signal)) sigaddset(&signals, signal);
  }
  return signals;
}

// Ends the program by the signal itself, so that a waiting process sees how it ended.
void EndBy(int signal) {
  std::signal(signal, SIG_DFL);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  std::raise(signal);
}

}  // namespace

struct InterruptWatch::State {
  sigset_t before{};
  std::atomic<bool> over{false};
  std::thread thread;
};

InterruptWatch::InterruptWatch(std::function<void()> last_words)
    : state_(std::make_unique<State>()) {
  const sigset_t watched = WatchedSignals();
  // Threads that start later inherit the mask and leave the signals to the watching thread.
  pthread_sigmask(SIG_BLOCK, &watched, &state_->before);
  state_->thread = std::thread([watched, &over = state_->over, last_words = std::move(last_words)] {
    int signal = 0;
    if (sigwait(&watched, &signal) != 0 || over) return;
    last_words();
    EndBy(signal);
  });
}

InterruptWatch::~InterruptWatch() {
  state_->over = true;
  pthread_kill(state_->thread.native_handle(), kWake);
  state_->thread.join();
  pthread_sigmask(SIG_SETMASK, &state_->before, nullptr);
}

}  // namespace qv::tool
