// Objects of which each thread has its own.
#pragma once

#include <memory>

namespace qv::platform {

// A slot that holds a different pointer for each thread. Where threads run fibers, each fiber
// counts as a thread, and may end before its thread does. Any thread.
class ThreadSlot {
 public:
  // Throws std::bad_alloc if the system has no more slots.
  ThreadSlot();
  ~ThreadSlot();
  ThreadSlot(const ThreadSlot&) = delete;
  ThreadSlot& operator=(const ThreadSlot&) = delete;

  // Returns this thread's pointer, or null if it has none.
  [[nodiscard]] void* Get() const;
  // Sets this thread's pointer, which must be null; `end` is called with it when this thread ends.
  // Throws std::bad_alloc on failure.
  void Put(void* what, void (*end)(void*)) const;

 private:
  const unsigned long index_;
};

// Returns this thread's object of that type. It is created on the first call and destroyed with the
// thread. A thread_local object must not have a destructor instead: MinGW's run-time library frees
// the memory of such objects before it destroys them.
template <class Object>
Object& OfThisThread() {
  static const ThreadSlot slot;
  if (void* const kept = slot.Get()) return *static_cast<Object*>(kept);
  auto made = std::make_unique<Object>();
  slot.Put(made.get(), [](void* object) { delete static_cast<Object*>(object); });
  return *made.release();
}

}  // namespace qv::platform
