#pragma once

#include <condition_variable>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "ProgressBar.h"
#include "qvnetcall/RvoCancel.h"
#include "tools/qvcall/system/Terminal.h"

namespace qv::tool {

// While it lives, an interrupt cancels the database call that this thread makes, which then fails
// with its own message, and ends the program when this is destroyed. Shows, if standard error is a
// terminal, how long a call has taken. Must be created before the session, so that an interrupted
// call is cleaned up before the program ends. Only one may exist at a time.
class CallProgress {
 public:
  explicit CallProgress(std::ostream& err);  // standard error
  ~CallProgress();
  CallProgress(const CallProgress&) = delete;
  CallProgress& operator=(const CallProgress&) = delete;

  // Starts showing a call whose answer takes long. Nobody else may write to `err` until End().
  void Begin();
  // Starts showing a call of which that many bytes are sent first, under the given label.
  void Begin(std::string sending, std::uint64_t bytes);
  void End();

 private:
  static void Report(std::uint64_t done, std::uint64_t total, int kind, void* context);
  void Show(std::string label, std::optional<std::uint64_t> bytes);
  void Interrupt();

  std::ostream& err_;
  CRvoCancel cancel_;
  bool is_sending_ = false;  // used by the thread of the call only

  std::mutex mutex_;  // guards the next four, which the watch's thread reads too
  std::string label_;
  std::unique_ptr<ProgressBar> bar_;  // null between calls, and without a terminal
  bool is_over_ = false;
  std::condition_variable over_;
  InterruptWatch watch_;  // last, because its callback uses the other members
};

}  // namespace qv::tool
