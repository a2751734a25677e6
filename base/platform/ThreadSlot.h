// What a thread has of its own and leaves behind.
#pragma once

#include <memory>

namespace qv::platform {

// A place in which every thread has something else. Where a thread is made of fibers, each of them
// counts as one: it can end while its thread goes on. Any thread.
class ThreadSlot {
 public:
  // Throws std::bad_alloc when there are no more places.
  ThreadSlot();
  ~ThreadSlot();
  ThreadSlot(const ThreadSlot&) = delete;
  ThreadSlot& operator=(const ThreadSlot&) = delete;

  // What this thread has here; null when there is nothing.
  [[nodiscard]] void* Get() const;
  // Puts something where there is nothing; `end` is called with it when this thread ends. Throws
  // std::bad_alloc when it cannot.
  void Put(void* what, void (*end)(void*)) const;

 private:
  const unsigned long index_;
};

// This thread's object of that type: made when it is first asked for, destroyed with the thread. An
// object that is thread_local itself must not need destruction: MinGW's run-time library gives the
// memory of such objects back before it destroys them.
template <class Object>
Object& OfThisThread() {
  static const ThreadSlot slot;
  if (void* const kept = slot.Get()) return *static_cast<Object*>(kept);
  auto made = std::make_unique<Object>();
  slot.Put(made.get(), [](void* object) { delete static_cast<Object*>(object); });
  return *made.release();
}

}  // namespace qv::platform
