// Brings the progress of a run to whoever asked for it on this thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "TransferBody.h"
#include "qvnetcall/transfer/Extensions.h"

namespace qv::components {

// Has `callback` called by the runs of this thread from now on; null ends it.
void SetRunCallback(QvTransferCallback callback, void* context) noexcept;

// One run, on one thread. Once the callback has stopped it, it stays stopped, and the callback is
// not called again.
class RunMeter final : public TransferMeter {
 public:
  explicit RunMeter(std::size_t file_count);

  // A file's turn begins. `file` outlives it.
  void Begin(const std::string& file, std::size_t index);
  // The same file is tried again.
  void TryAgain();
  bool Moved(std::uint64_t done, std::uint64_t total) override;
  // The file's turn is over; when it `succeeded`, all of it has been moved.
  void End(bool succeeded);

  // Waits; false when the run was stopped meanwhile.
  [[nodiscard]] bool Wait(std::chrono::milliseconds duration);
  [[nodiscard]] bool IsStopped() const { return is_stopped_; }

 private:
  using Clock = std::chrono::steady_clock;

  void Report();

  QvTransferProgress progress_{};
  Clock::time_point last_report_;
  bool is_stopped_ = false;
};

}  // namespace qv::components
