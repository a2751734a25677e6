#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "ProgressBar.h"
#include "qvnetcall/transport/NetworkProgress.h"
#include "tools/qvcall/system/InterruptWatch.h"
#include "tools/qvcall/system/LoadedFunction.h"

namespace qv::tool {

// Shows, on a terminal, how far each of several files is that this thread moves over the socket
// transport, and has an interrupted program leave nothing behind. One at a time; one thread calls
// the members.
class TransferProgress {
 public:
  // `clean_up` is called, by another thread, before an interrupt ends the program; the thread that
  // moves files may still be at it. `err` is standard error.
  TransferProgress(std::ostream& err, std::function<void()> clean_up);
  ~TransferProgress();
  TransferProgress(const TransferProgress&) = delete;
  TransferProgress& operator=(const TransferProgress&) = delete;

  // The file that is moved from now on, of which so many bytes are expected. Until End() nobody
  // else writes to `err`.
  void Begin(std::string label, std::optional<std::uint64_t> bytes);
  void End();

 private:
  static void Report(std::uint64_t done, std::uint64_t total, int kind, void* context);
  void ShowInterrupted();

  std::ostream& err_;
  const std::function<void()> clean_up_;
  // Null without a terminal; another maker's transport may have none.
  decltype(NetworkTransSetProgress)* const set_listener_;

  std::mutex mutex_;  // of what the watch's thread reads too
  std::string label_;
  std::unique_ptr<ProgressBar> bar_;  // null between files, and without a terminal

  std::optional<std::uint64_t> total_;
  InterruptWatch watch_;  // the last, so that its words find the others
};

}  // namespace qv::tool
