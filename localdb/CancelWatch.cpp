#include "CancelWatch.h"

#include <system_error>

namespace qv {

CancelWatch::CancelWatch(odbc::Statement& statement)
    : statement_(statement), flag_(call::CancelFlagOfThisThread()) {
  if (flag_ == nullptr) return;
  try {
    thread_ = std::thread([this] { Run(); });
  } catch (const std::system_error&) {
    // The system has no thread left. The statement runs, and cannot be cancelled.
  }
}

CancelWatch::~CancelWatch() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

// Cancels again and again, because drivers ignore it while they only prepare.
void CancelWatch::Run() {
  std::unique_lock lock(mutex_);
  while (!changed_.wait_for(lock, call::kSlice, [this] { return ends_; })) {
    if (*flag_ == 0) continue;
    lock.unlock();
    statement_.Cancel();
    lock.lock();
  }
}

std::unique_lock<std::mutex> CancelWatch::Lock(std::mutex& database) {
  if (call::CancelFlagOfThisThread() == nullptr) return std::unique_lock(database);
  std::unique_lock lock(database, std::try_to_lock);
  while (!lock.owns_lock() && !call::IsCancelled()) {
    std::this_thread::sleep_for(call::kSlice / 4);
    static_cast<void>(lock.try_lock());
  }
  if (lock.owns_lock() && call::IsCancelled()) lock.unlock();
  return lock;
}

}  // namespace qv
