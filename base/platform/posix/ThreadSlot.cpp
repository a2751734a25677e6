#include "base/platform/ThreadSlot.h"

#include <atomic>

namespace qv::platform {

namespace {

std::atomic<unsigned long> next_index = 0;

struct Kept {
  unsigned long index;
  void* what;
  void (*end)(void*);
  Kept* before;
};

// A thread has few of them. An object that is requested after EndOfAll ran is created anew and
// never destroyed.
thread_local Kept* newest = nullptr;

struct EndOfAll {
  ~EndOfAll() {
    while (newest != nullptr) {
      const std::unique_ptr<Kept> ended(newest);
      newest = ended->before;
      ended->end(ended->what);
    }
  }
};

}  // namespace

ThreadSlot::ThreadSlot() : index_(next_index++) {}

ThreadSlot::~ThreadSlot() = default;

void* ThreadSlot::Get() const {
  const Kept* kept = newest;
  while (kept != nullptr && kept->index != index_) kept = kept->before;
  return kept != nullptr ? kept->what : nullptr;
}

// The C library does not unload this module before the thread has ended.
void ThreadSlot::Put(void* what, void (*end)(void*)) const {
  newest = new Kept{index_, what, end, newest};
  thread_local const EndOfAll at_end;
}

}  // namespace qv::platform
