#include "tests/support/Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <thread>

namespace {

std::atomic<std::size_t> count = 0;
std::atomic<int> left_for_others = qv::kUnlimited;
std::atomic<std::thread::id> limiting_thread;

bool IsRefused() {
  return std::this_thread::get_id() != limiting_thread.load() && --left_for_others < 0;
}

}  // namespace

void* operator new(std::size_t size) {
  ++count;
  void* const memory = IsRefused() ? nullptr : std::malloc(size != 0 ? size : 1);
  if (memory != nullptr) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace qv {

std::size_t AllocationsSoFar() { return count; }

int LimitOthersTo(int allocations) {
  limiting_thread = std::this_thread::get_id();
  return left_for_others.exchange(allocations);
}

}  // namespace qv
