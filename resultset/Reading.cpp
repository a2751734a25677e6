#include "Reading.h"

#include <atomic>

#include "base/call/LastError.h"
#include "base/platform/Platform.h"
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
  switch (reading) {
    case Reading::kDone:
      return true;
    case Reading::kUnreadable:
      call::SetError(error::kBadReply, "the answer cannot be read as a recordset");
      break;
    case Reading::kTooLarge:
      call::SetError(error::kTooLarge, BeyondLimitText(ResultLimit()));
      break;
    case Reading::kCancelled:
      call::SetCancelled();
      break;
  }
  return false;
}

}  // namespace qv
