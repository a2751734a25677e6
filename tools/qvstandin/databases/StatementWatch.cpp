#include "StatementWatch.h"

#include <exception>

namespace qv::standin {

namespace {

constexpr std::chrono::milliseconds kBetweenQuestions{20};
constexpr std::chrono::milliseconds kBetweenCancellations{100};

}  // namespace

StatementWatch::StatementWatch() : thread_([this] { Run(); }) {}

StatementWatch::~StatementWatch() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

// While requests follow each other quickly, the thread is not woken for each.
void StatementWatch::Begin(WorkLimit& limit) {
  const std::lock_guard lock(mutex_);
  limit_ = &limit;
  if (sleeps_) changed_.notify_all();
}

void StatementWatch::End() {
  const std::lock_guard lock(mutex_);
  limit_ = nullptr;
}

bool StatementWatch::IsOver() {
  const std::lock_guard lock(mutex_);
  return limit_->IsOver();
}

ErrorCode StatementWatch::Reason() {
  const std::lock_guard lock(mutex_);
  return limit_->Reason();
}

Outcome StatementWatch::Failure() {
  const std::lock_guard lock(mutex_);
  return limit_->Failure();
}

// Waits for a running cancellation, so that none reaches a statement that is gone.
void StatementWatch::Set(Cancel cancel) {
  const std::lock_guard lock(mutex_);
  cancel_ = std::move(cancel);
  cancelled_ = 0;
}

void StatementWatch::CancelOnce() {
  try {
    cancel_(cancelled_++);
  } catch (const std::exception&) {
    // Out of memory; the next attempt may succeed.
  }
}

void StatementWatch::Run() {
  std::unique_lock lock(mutex_);
  while (!ends_) {
    sleeps_ = limit_ == nullptr;
    if (sleeps_) {
      changed_.wait(lock, [this] { return ends_ || limit_ != nullptr; });
      continue;
    }
    const bool is_over = limit_->IsOver();
    if (is_over && cancel_) CancelOnce();
    changed_.wait_for(lock, is_over ? kBetweenCancellations : kBetweenQuestions,
                      [this] { return ends_; });
  }
}

}  // namespace qv::standin
