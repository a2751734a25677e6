#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "ProgressBar.h"
#include "qvnetcall/transport/NetworkProgress.h"
#include "tools/qvcall/system/SystemPlaces.h"
#include "tools/qvcall/system/Terminal.h"

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

// Shows, while it lives, how far a batch is that this thread sends over the socket transport: on
// its way, then in the server's hands. Who interrupts it hears what that leaves open. Shows nothing
// when standard error is no terminal.
class BatchProgress {
 public:
  // `sending` says what is sent, in `bytes`, and outlives this; `err` is standard error.
  BatchProgress(std::string_view sending, std::uint64_t bytes, std::ostream& err);
  ~BatchProgress();
  BatchProgress(const BatchProgress&) = delete;
  BatchProgress& operator=(const BatchProgress&) = delete;

 private:
  struct Shown;
  std::unique_ptr<Shown> shown_;  // null without a terminal
};

}  // namespace qv::tool
