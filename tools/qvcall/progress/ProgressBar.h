#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>

#include "ProgressLine.h"

namespace qv::tool {

// A line on a terminal that shows the progress of some work. Its own thread draws it, at most ten
// times a second, so that a slow terminal does not delay the work, and the time advances even if
// the work does not. Any thread may call the members.
class ProgressBar {
 public:
  // Draws on `out`, which is a terminal that nobody else may write to until Clear(). `width`
  // returns how many cells a line has at the moment; the drawing thread calls it. Nothing is drawn
  // before the first piece of work has lasted for `delay`.
  ProgressBar(std::ostream& out, std::function<std::size_t()> width,
              std::chrono::milliseconds delay = std::chrono::milliseconds(0));
  ~ProgressBar() { Clear(); }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  // Starts the first or the next piece of work. `label` must outlive the bar. `total` is in bytes,
  // and nullopt if it is not known.
  void Begin(std::string_view label, std::optional<std::uint64_t> total);
  // Reports that `done` bytes of it are done.
  void Advance(std::uint64_t done);
  // Reports the state of the same piece of work, possibly with another label; its time continues.
  void Update(const Progress& progress);
  // Erases the line. Nothing is drawn afterwards.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  void DrawUntilStopped(const std::stop_token& stop);
  [[nodiscard]] Progress Now();
  void Draw(std::string_view line, std::size_t cells);

  std::ostream& out_;
  const std::function<std::size_t()> width_;
  const std::chrono::milliseconds delay_;

  std::mutex mutex_;  // guards the next two; never held while something is drawn
  Progress progress_;
  Clock::time_point begin_;

  std::mutex life_mutex_;  // guards starting and stopping the thread
  bool cleared_ = false;
  // Used by the thread, and by Clear() after the thread has ended.
  bool is_drawn_ = false;
  std::size_t drawn_cells_ = 0;
  std::condition_variable_any stopped_;
  std::jthread thread_;
};

}  // namespace qv::tool
