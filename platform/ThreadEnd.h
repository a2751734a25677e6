// What a thread has of its own and leaves behind.
#pragma once

#include <memory>

namespace qv::platform {

// Calls `end` with `what` when this thread ends, what was added last first. Throws std::bad_alloc
// when it cannot.
void AtThreadEnd(void (*end)(void*), void* what);

// This thread's object behind `kept`, a thread_local pointer: made when it is first asked for,
// destroyed with the thread. An object that is thread_local itself must not need destruction:
// MinGW's run-time library gives the memory of such objects back before it destroys them.
template <class Object>
Object& OfThisThread(Object*& kept) {
  if (kept == nullptr) {
    auto made = std::make_unique<Object>();
    AtThreadEnd([](void* object) { delete static_cast<Object*>(object); }, made.get());
    kept = made.release();
  }
  return *kept;
}

}  // namespace qv::platform
