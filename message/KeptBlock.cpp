#include "KeptBlock.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "base/platform/Platform.h"
#include "base/platform/ThreadSlot.h"

namespace qv {

namespace {

// What a call clears itself is a multiple of this, which is a multiple of a page on most systems.
constexpr std::uint32_t kStep = 16384;

KeptBlock::Memory NewMemory() {
  void* const pages = platform::AllocatePages(KeptBlock::kLargest);
  if (pages == nullptr) throw std::bad_alloc();
  return {static_cast<unsigned char*>(pages)};
}

void Free(const KeptBlock::Memory& memory) {
  platform::FreePages(memory.start, KeptBlock::kLargest);
}

// Makes all of the memory zero. Returns false if it must be freed.
bool Clear(KeptBlock::Memory& memory, std::uint32_t used) {
  // Pages that come back from the system cost more than clearing them, so those of two calls stay.
  const std::uint32_t stays = std::max({used, memory.last_used, std::uint32_t{1}});
  const std::uint32_t cleared = std::min((stays + kStep - 1) / kStep * kStep, KeptBlock::kLargest);
  memory.last_used = used;
  std::memset(memory.start, 0, cleared);
  const std::uint32_t rest = KeptBlock::kLargest - cleared;
  return rest == 0 || platform::ZeroPages(memory.start + cleared, rest);
}

}  // namespace

// The blocks of a thread that are not in use.
class KeptBlock::Store {
 public:
  Store() = default;
  ~Store() {
    while (count_ != 0) Free(blocks_[--count_]);
  }
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  Memory Take() { return count_ != 0 ? blocks_[--count_] : NewMemory(); }
  void Give(Memory memory, std::uint32_t used) {
    if (count_ < blocks_.size() && Clear(memory, used)) {
      blocks_[count_++] = memory;
    } else {
      Free(memory);
    }
  }

 private:
  // A request and a reply, and those of a call inside it.
  std::array<Memory, 4> blocks_;
  std::size_t count_ = 0;
};

KeptBlock::KeptBlock(std::uint32_t size) : store_(platform::OfThisThread<Store>()), size_(size) {
  if (size_ > kLargest) throw std::bad_alloc();
  memory_ = store_.Take();
}

KeptBlock::~KeptBlock() { store_.Give(memory_, std::min(used_, kLargest)); }

}  // namespace qv
