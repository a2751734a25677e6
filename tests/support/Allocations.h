// Counts and limits what a test program allocates. A program that calls this has the counting
// operators new.
#pragma once

#include <cstddef>

namespace qv {

// Returns how often the program has called operator new so far, on any thread.
[[nodiscard]] std::size_t AllocationsSoFar();

// Lets all threads but the calling one together call operator new that often before it fails.
// Returns what they had left; less than 0 if it has failed.
int LimitOthersTo(int allocations);
inline constexpr int kUnlimited = 1'000'000'000;

// Returns how many allocations it takes to make a `call` and to keep its result.
template <class Call>
[[nodiscard]] std::size_t AllocationsOf(const Call& call) {
  const std::size_t before = AllocationsSoFar();
  [[maybe_unused]] const auto result = call();
  return AllocationsSoFar() - before;
}

}  // namespace qv
