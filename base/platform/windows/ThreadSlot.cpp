#include "base/platform/ThreadSlot.h"

#include <windows.h>

#include <new>

namespace qv::platform {

namespace {

struct Kept {
  void* what;
  void (*end)(void*);
};

void NTAPI End(void* value) {
  const std::unique_ptr<Kept> kept(static_cast<Kept*>(value));
  if (kept != nullptr) kept->end(kept->what);
}

}  // namespace

ThreadSlot::ThreadSlot() : index_(::FlsAlloc(End)) {
  if (index_ == FLS_OUT_OF_INDEXES) throw std::bad_alloc();
}

// Runs when this module is unloaded, and ends what threads still hold, since they must not call
// into it later.
ThreadSlot::~ThreadSlot() { ::FlsFree(index_); }

void* ThreadSlot::Get() const {
  const auto* const kept = static_cast<const Kept*>(::FlsGetValue(index_));
  return kept != nullptr ? kept->what : nullptr;
}

void ThreadSlot::Put(void* what, void (*end)(void*)) const {
  auto kept = std::make_unique<Kept>(Kept{what, end});
  if (::FlsSetValue(index_, kept.get()) == FALSE) throw std::bad_alloc();
  static_cast<void>(kept.release());  // the slot has it
}

}  // namespace qv::platform
