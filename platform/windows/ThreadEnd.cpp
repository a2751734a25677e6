#include "../ThreadEnd.h"

#include <windows.h>

#include <new>

namespace qv::platform {

namespace {

struct Ending {
  void (*end)(void*);
  void* what;
  Ending* before;
};

void NTAPI EndAll(void* last) {
  for (auto* ending = static_cast<Ending*>(last); ending != nullptr;) {
    const std::unique_ptr<Ending> ended(ending);
    ended->end(ended->what);
    ending = ended->before;
  }
}

// Given back when this module is unloaded, which ends what threads still have: they must not call
// into it later.
class Slot {
 public:
  Slot() : index_(::FlsAlloc(EndAll)) {
    if (index_ == FLS_OUT_OF_INDEXES) throw std::bad_alloc();
  }
  ~Slot() { ::FlsFree(index_); }
  Slot(const Slot&) = delete;
  Slot& operator=(const Slot&) = delete;

  void Add(void (*end)(void*), void* what) const {
    auto added =
        std::make_unique<Ending>(Ending{end, what, static_cast<Ending*>(::FlsGetValue(index_))});
    if (::FlsSetValue(index_, added.get()) == FALSE) throw std::bad_alloc();
    static_cast<void>(added.release());  // the slot has it
  }

 private:
  const DWORD index_;
};

}  // namespace

void AtThreadEnd(void (*end)(void*), void* what) {
  static const Slot slot;
  slot.Add(end, what);
}

}  // namespace qv::platform
