// Reports the progress of a run to the callback of its thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "TransferBody.h"
#include "qvnetcall/transfer/Extensions.h"

namespace qv::components {

// Sets the callback for all runs of this thread; null removes it.
void SetRunCallback(QvTransferCallback callback, void* context) noexcept;

// Belongs to one run on one thread. Once the callback has stopped the run, it is not called again.
class RunMeter final : public TransferMeter {
 public:
  explicit RunMeter(std::size_t file_count);

  // Starts a file. `file` must stay valid until End().
  void Begin(const std::string& file, std::size_t index);
  // Counts another attempt with the same file.
  void TryAgain();
  bool Moved(std::uint64_t done, std::uint64_t total) override;
  // Ends the file. If it `succeeded`, all of it counts as moved.
  void End(bool succeeded);

  // Waits, and keeps reporting. Returns false if the run was stopped.
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
