#include "Reading.h"

#include <atomic>

#include "base/platform/Platform.h"
#include "base/platform/ThreadSlot.h"
#include "qvnetcall/ResultCodes.h"

namespace qv {

namespace {

std::atomic<std::uint64_t> set_limit = 0;

std::uint64_t DefaultLimit() {
  // Where the system does not say how much memory there is.
  constexpr std::uint64_t kAssumedMemory = std::uint64_t{4} << 30;
  static const std::uint64_t memory = platform::PhysicalMemory();
  return (memory != 0 ? memory : kAssumedMemory) / 2;
}

ReadFailure& Failure() { return platform::OfThisThread<ReadFailure>(); }

ReadFailure FailureOf(Reading reading) {
  switch (reading) {
    case Reading::kDone:
      return {};
    case Reading::kUnreadable:
      return {error::kBadReply, "the answer cannot be read as a recordset"};
    case Reading::kTooLarge:
      return {error::kTooLarge, BeyondLimitText(ResultLimit())};
  }
  return {};
}

}  // namespace

std::uint64_t ResultLimit() {
  const std::uint64_t limit = set_limit.load(std::memory_order_relaxed);
  return limit != 0 ? limit : DefaultLimit();
}

void SetResultLimit(std::uint64_t bytes) { set_limit.store(bytes, std::memory_order_relaxed); }

std::string BeyondLimitText(std::uint64_t limit) {
  return "the answer takes more memory than the limit of " + std::to_string(limit) + " bytes";
}

bool NoteReading(Reading reading) {
  Failure() = FailureOf(reading);
  return reading == Reading::kDone;
}

const ReadFailure& LastReadFailure() { return Failure(); }

}  // namespace qv
