#include "ProgressBar.h"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <utility>

#include "tools/qvcall/output/DisplayText.h"

namespace qv::tool {
namespace {

constexpr std::chrono::milliseconds kBetweenDrawings{100};

}  // namespace

ProgressBar::ProgressBar(std::ostream& out, std::function<std::size_t()> width,
                         std::chrono::milliseconds delay)
    : out_(out), width_(std::move(width)), delay_(delay) {}

void ProgressBar::Begin(std::string_view label, std::optional<std::uint64_t> total) {
  {
    const std::lock_guard lock(mutex_);
    progress_ = {.label = label, .total = total};
    begin_ = Clock::now();
  }
  const std::lock_guard lock(life_mutex_);
  if (cleared_ || thread_.joinable()) return;
  thread_ = std::jthread([this](const std::stop_token& stop) { DrawUntilStopped(stop); });
}

void ProgressBar::Advance(std::uint64_t done) {
  const std::lock_guard lock(mutex_);
  progress_.done = done;
}

void ProgressBar::Update(const Progress& progress) {
  const std::lock_guard lock(mutex_);
  progress_ = progress;
}

void ProgressBar::Clear() {
  const std::lock_guard lock(life_mutex_);
  if (std::exchange(cleared_, true) || !thread_.joinable()) return;
  thread_.request_stop();
  thread_.join();
  if (!is_drawn_) return;
  Draw({}, 0);
  out_ << '\r' << std::flush;
}

void ProgressBar::DrawUntilStopped(const std::stop_token& stop) {
  std::mutex mutex;  // the wait needs one, although there is nothing to guard
  std::unique_lock lock(mutex);
  const auto waited = [&](std::chrono::milliseconds time) {
    return !stopped_.wait_for(lock, stop, time, [&stop] { return stop.stop_requested(); });
  };
  if (delay_.count() != 0 && !waited(delay_)) return;
  do {
    // The last cell stays empty: some terminals wrap when it is written.
    const std::size_t width = width_();
    const std::string line = ProgressLine(Now(), width > 0 ? width - 1 : 0);
    std::string ignored;
    Draw(line, AppendVisible(line, ignored));
  } while (waited(kBetweenDrawings));
}

Progress ProgressBar::Now() {
  const std::lock_guard lock(mutex_);
  Progress now = progress_;
  now.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin_);
  return now;
}

// Overwrites the rest of the previous line with blanks, which every terminal understands.
void ProgressBar::Draw(std::string_view line, std::size_t cells) {
  const std::size_t more = drawn_cells_ - std::min(drawn_cells_, cells);
  // One write, because standard error is flushed after each.
  out_ << fmt::format("\r{}{:{}}", line, "", more) << std::flush;
  drawn_cells_ = cells;
  is_drawn_ = true;
}

}  // namespace qv::tool
