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

// A line on a terminal that shows how far some work has come. A thread of its own draws it, at most
// ten times a second, so that a slow terminal does not hold up the work, and time goes on while
// nothing else does. Any thread may call the members.
class ProgressBar {
 public:
  // Draws on `out`, which is a terminal that nobody else writes to until Clear(). `width` tells how
  // many cells a line has now; the drawing thread calls it.
  ProgressBar(std::ostream& out, std::function<std::size_t()> width);
  ~ProgressBar() { Clear(); }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  // Starts a piece of work, the first or the next. `label` outlives the bar; `total` is in bytes,
  // none when it is not known.
  void Begin(std::string_view label, std::optional<std::uint64_t> total);
  // Says that `done` bytes of it are done.
  void Advance(std::uint64_t done);
  // Says where the same piece of work stands, also by another label; its time goes on.
  void Update(const Progress& progress);
  // Takes the line away. Nothing is drawn from then on.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  void DrawUntilStopped(const std::stop_token& stop);
  [[nodiscard]] Progress Now();
  void Draw(std::string_view line, std::size_t cells);

  std::ostream& out_;
  const std::function<std::size_t()> width_;

  std::mutex mutex_;  // held for moments only, never while something is drawn
  Progress progress_;
  Clock::time_point begin_;

  std::mutex life_mutex_;  // of the thread
  bool cleared_ = false;
  std::size_t drawn_cells_ = 0;  // by the thread, and by Clear() when that has ended
  std::condition_variable_any stopped_;
  std::jthread thread_;
};

}  // namespace qv::tool
