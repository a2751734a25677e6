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
#include "tools/qvcall/system/SystemPlaces.h"
#include "tools/qvcall/system/Terminal.h"

namespace qv::tool {

// Shows the progress of each of several files that this thread transfers over the socket transport,
// if standard error is a terminal, and cleans up when the program is interrupted. Only one may
// exist at a time; one thread calls the members.
class TransferProgress {
 public:
  // Another thread calls `clean_up` before an interrupt ends the program; a transfer may still be
  // running then. `err` is standard error.
  TransferProgress(std::ostream& err, std::function<void()> clean_up);
  ~TransferProgress();
  TransferProgress(const TransferProgress&) = delete;
  TransferProgress& operator=(const TransferProgress&) = delete;

  // Starts showing a file of which that many bytes are expected. Nobody else may write to `err`
  // until End().
  void Begin(std::string label, std::optional<std::uint64_t> bytes);
  void End();

 private:
  static void Report(std::uint64_t done, std::uint64_t total, int kind, void* context);
  void ShowInterrupted();

  std::ostream& err_;
  const std::function<void()> clean_up_;
  // Null without a terminal, and if the transport in use does not export it.
  decltype(NetworkTransSetProgress)* const set_listener_;

  std::mutex mutex_;  // guards the next two, which the watch's thread reads too
  std::string label_;
  std::unique_ptr<ProgressBar> bar_;  // null between files, and without a terminal

  std::optional<std::uint64_t> total_;
  InterruptWatch watch_;  // last, because its callback uses the other members
};

}  // namespace qv::tool
