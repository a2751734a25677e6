// How long one request may keep the server working.
#pragma once

#include <chrono>
#include <functional>

#include "ErrorCode.h"

namespace qv::standin {

// Asked again and again while work goes on; once it says that the work is over it stays so. One
// thread.
class WorkLimit {
 public:
  using Clock = std::chrono::steady_clock;

  // `abandoned` tells whether nobody waits for the work any more; it may be slow and is asked
  // rarely.
  WorkLimit(std::chrono::milliseconds time, std::function<bool()> abandoned);

  [[nodiscard]] bool IsOver();
  // How long it may still go on; never negative.
  [[nodiscard]] std::chrono::milliseconds TimeLeft() const;
  // Why it is over; kNone while it is not.
  [[nodiscard]] ErrorCode Reason() const { return reason_; }

 private:
  Clock::time_point deadline_;
  Clock::time_point next_question_;
  std::function<bool()> abandoned_;
  ErrorCode reason_ = ErrorCode::kNone;
};

}  // namespace qv::standin
