// Ends statements that a database works on once nobody waits for them any more.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

// Has a thread of its own, since the one that works stands still inside the driver. From its
// construction to its destruction the limit is asked through it only.
class StatementWatch {
 public:
  // Is called from the watch's thread, with the number of times that it has been before.
  using Cancel = std::function<void(int before)>;

  // `limit` outlives the watch.
  explicit StatementWatch(WorkLimit& limit);
  ~StatementWatch();
  StatementWatch(const StatementWatch&) = delete;
  StatementWatch& operator=(const StatementWatch&) = delete;

  [[nodiscard]] bool IsOver();
  [[nodiscard]] ErrorCode Reason();

  // While it is there, `cancel` is called as soon as the work is over, and again and again: a
  // database misses what comes just before the statement. One at a time.
  class Over {
   public:
    Over(StatementWatch& watch, Cancel cancel) : watch_(watch) { watch_.Set(std::move(cancel)); }
    ~Over() { watch_.Set(nullptr); }
    Over(const Over&) = delete;
    Over& operator=(const Over&) = delete;

   private:
    StatementWatch& watch_;
  };

 private:
  void Set(Cancel cancel);
  void CancelOnce();
  void Run();

  WorkLimit& limit_;
  std::mutex mutex_;
  std::condition_variable changed_;
  Cancel cancel_;
  int cancelled_ = 0;  // times
  bool ends_ = false;
  std::thread thread_;
};

}  // namespace qv::standin
