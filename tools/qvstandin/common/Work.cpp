#include "Work.h"

#include <algorithm>
#include <utility>

namespace qv::standin {

namespace {

constexpr std::chrono::milliseconds kBetweenQuestions{20};

}  // namespace

WorkLimit::WorkLimit(std::chrono::milliseconds time, std::function<bool()> abandoned)
    : deadline_(Clock::now() + time),
      next_question_(Clock::now() + kBetweenQuestions),
      abandoned_(std::move(abandoned)) {}

bool WorkLimit::IsOver() {
  if (reason_ != ErrorCode::kNone) return true;
  const Clock::time_point now = Clock::now();
  if (now >= deadline_) {
    reason_ = ErrorCode::kTimedOut;
  } else if (now >= next_question_) {
    next_question_ = now + kBetweenQuestions;
    if (abandoned_()) reason_ = ErrorCode::kStopped;
  }
  return reason_ != ErrorCode::kNone;
}

std::chrono::milliseconds WorkLimit::TimeLeft() const {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now());
  return std::max(left, std::chrono::milliseconds(0));
}

}  // namespace qv::standin
