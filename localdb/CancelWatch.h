// Cancels a statement when the call that runs it is cancelled.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "base/call/CancelFlag.h"
#include "base/odbc/Statement.h"

namespace qv {

// Exists while a statement runs. It has a thread of its own, since the calling thread is blocked in
// the driver, but only if the calling thread has a flag that could cancel it.
class CancelWatch {
 public:
  // Watches the flag of the calling thread. `statement` outlives the watch.
  explicit CancelWatch(odbc::Statement& statement);
  ~CancelWatch();
  CancelWatch(const CancelWatch&) = delete;
  CancelWatch& operator=(const CancelWatch&) = delete;

  // Locks a database that another thread may be using. Returns a lock that owns nothing if the call
  // is cancelled before.
  [[nodiscard]] static std::unique_lock<std::mutex> Lock(std::mutex& database);

 private:
  void Run();

  odbc::Statement& statement_;
  const call::CancelFlag* const flag_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool ends_ = false;
  std::thread thread_;
};

}  // namespace qv
