// Cancels running statements once nobody waits for them any more.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

// It has a thread of its own, since the working thread is blocked in the driver. It serves one
// request after the other.
class StatementWatch {
 public:
  // Called on the watch's thread with the number of earlier calls.
  using Cancel = std::function<void(int before)>;

  StatementWatch();
  ~StatementWatch();
  StatementWatch(const StatementWatch&) = delete;
  StatementWatch& operator=(const StatementWatch&) = delete;

  // Begins and ends a request. Call the other functions between the two, and use the limit, which
  // outlives the request, only through them.
  void Begin(WorkLimit& limit);
  void End();

  [[nodiscard]] bool IsOver();
  [[nodiscard]] ErrorCode Reason();
  // Returns the failure of work that is over.
  [[nodiscard]] Outcome Failure();

  // While this object exists, `cancel` is called as soon as the work is over, and then repeatedly:
  // a database ignores a cancellation that comes just before the statement. One object at a time.
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

  WorkLimit* limit_ = nullptr;  // between requests, null
  bool sleeps_ = false;         // until a request begins
  std::mutex mutex_;
  std::condition_variable changed_;
  Cancel cancel_;
  int cancelled_ = 0;  // how often
  bool ends_ = false;
  std::thread thread_;
};

}  // namespace qv::standin
