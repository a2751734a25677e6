#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "QueueClient.h"
#include "tools/qvcall/progress/ProgressBar.h"
#include "tools/qvcall/system/Terminal.h"

namespace qv::tool {

// Shows the progress of a queue's run, if standard error is a terminal, and turns an interrupt into
// an orderly end of the run. Must be created before the client whose runs it watches and destroyed
// after it, so that an interrupted run is cleaned up before the interrupt ends the program. Only
// one may exist at a time; one thread calls the members.
class QueueProgress {
 public:
  // `set_listener` is null if the component does not report progress. `err` is standard error.
  QueueProgress(std::ostream& err, decltype(QvCoFtpSetProgress)* set_listener);
  ~QueueProgress();
  QueueProgress(const QueueProgress&) = delete;
  QueueProgress& operator=(const QueueProgress&) = delete;

  // Starts showing a run of files with these paths and that many bytes in all, if that is known.
  // Nobody else may write to `err` until End().
  void Begin(const std::vector<std::string>& paths, std::optional<std::uint64_t> bytes);
  void End();
  // Returns the total size of the files that were transferred completely, or nullopt if the
  // component does not report progress.
  [[nodiscard]] std::optional<std::uint64_t> MovedBytes() const;

 private:
  static int Report(const QvTransferProgress* progress, void* context) noexcept;
  void Take(const QvTransferProgress& progress);
  void Interrupt();

  std::ostream& err_;
  decltype(QvCoFtpSetProgress)* const set_listener_;

  // Used only by the thread that runs the queue.
  std::vector<std::string> labels_;
  std::optional<std::uint64_t> total_;
  std::int32_t index_ = 0;
  std::uint64_t before_ = 0;     // bytes of the files before this one
  std::uint64_t file_done_ = 0;  // of this one
  std::uint64_t file_total_ = 0;

  std::atomic<bool> is_stopped_ = false;
  std::mutex mutex_;                  // guards what the watch's thread uses too
  std::unique_ptr<ProgressBar> bar_;  // null without a terminal
  bool is_listening_ = false;
  bool is_over_ = false;
  std::condition_variable over_;
  InterruptWatch watch_;  // last, because its callback uses the other members
};

}  // namespace qv::tool
