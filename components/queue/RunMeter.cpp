#include "RunMeter.h"

#include <algorithm>
#include <thread>

#include "base/text/Numbers.h"

namespace qv::components {

namespace {

constexpr std::chrono::milliseconds kBetweenReports{100};

struct Listener {
  QvTransferCallback callback = nullptr;
  void* context = nullptr;
};

thread_local Listener listener;

}  // namespace

void SetRunCallback(QvTransferCallback callback, void* context) noexcept {
  listener = {callback, context};
}

RunMeter::RunMeter(std::size_t file_count) {
  progress_.file_count = text::SaturatedTo32Bits(file_count);
}

void RunMeter::Begin(const std::string& file, std::size_t index) {
  progress_.file = file.c_str();
  progress_.file_index = text::SaturatedTo32Bits(index);
  progress_.file_done = 0;
  progress_.file_total = 0;
  progress_.attempt = 1;
  Report();
}

void RunMeter::TryAgain() { ++progress_.attempt; }

bool RunMeter::Moved(std::uint64_t done, std::uint64_t total) {
  progress_.file_done = done;
  progress_.file_total = total;
  if (Clock::now() - last_report_ >= kBetweenReports) Report();
  return !is_stopped_;
}

void RunMeter::End(bool succeeded) {
  if (succeeded) progress_.file_total = std::max(progress_.file_total, progress_.file_done);
  if (succeeded) progress_.file_done = progress_.file_total;
  Report();
}

bool RunMeter::Wait(std::chrono::milliseconds duration) {
  const Clock::time_point end = Clock::now() + duration;
  while (!is_stopped_ && Clock::now() < end) {
    std::this_thread::sleep_until(std::min(end, Clock::now() + kBetweenReports));
    Moved(progress_.file_done, progress_.file_total);
  }
  return !is_stopped_;
}

void RunMeter::Report() {
  last_report_ = Clock::now();
  if (is_stopped_ || listener.callback == nullptr) return;
  is_stopped_ = listener.callback(&progress_, listener.context) != 0;
}

}  // namespace qv::components
