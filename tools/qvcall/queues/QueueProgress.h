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

// Shows, on a terminal, how far the run of a queue is, and has an interrupt end the run in order.
// Made before the client whose runs it watches, and ended after it, so that what an interrupted run
// left is put in order before the program ends by the interrupt. One at a time; one thread calls
// the members.
class QueueProgress {
 public:
  // A component that cannot tell leaves `set_listener` null. `err` is standard error.
  QueueProgress(std::ostream& err, decltype(QvCoFtpSetProgress)* set_listener);
  ~QueueProgress();
  QueueProgress(const QueueProgress&) = delete;
  QueueProgress& operator=(const QueueProgress&) = delete;

  // A run of files with these paths begins, which have so many bytes together, if that is known.
  // Until End() nobody else writes to `err`.
  void Begin(const std::vector<std::string>& paths, std::optional<std::uint64_t> bytes);
  void End();
  // How many bytes the files have of which all bytes were moved; none when the component did not
  // tell.
  [[nodiscard]] std::optional<std::uint64_t> MovedBytes() const;

 private:
  static int Report(const QvTransferProgress* progress, void* context) noexcept;
  void Take(const QvTransferProgress& progress);
  void Interrupt();

  std::ostream& err_;
  decltype(QvCoFtpSetProgress)* const set_listener_;

  // Of the thread that runs the queue.
  std::vector<std::string> labels_;
  std::optional<std::uint64_t> total_;
  std::int32_t index_ = 0;
  std::uint64_t before_ = 0;     // bytes of the files before this one
  std::uint64_t file_done_ = 0;  // of this one
  std::uint64_t file_total_ = 0;

  std::atomic<bool> is_stopped_ = false;
  std::mutex mutex_;                  // of what the watch's thread reads too
  std::unique_ptr<ProgressBar> bar_;  // null without a terminal
  bool is_listening_ = false;
  bool is_over_ = false;
  std::condition_variable over_;
  InterruptWatch watch_;  // the last, so that its words find the others
};

}  // namespace qv::tool
