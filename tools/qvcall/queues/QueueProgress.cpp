#include "QueueProgress.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <chrono>

#include "tools/qvcall/system/Terminal.h"

namespace qv::tool {
namespace {

// How long to wait for a run that was told to stop, because its server may not answer.
constexpr std::chrono::seconds kPatience{10};

std::vector<std::string> LabelsOf(const std::vector<std::string>& paths) {
  std::vector<std::string> labels;
  labels.reserve(paths.size());
  for (const std::string& path : paths) {
    const std::string name = path.substr(path.find_last_of("/\\") + 1);
    labels.push_back(paths.size() == 1
                         ? name
                         : fmt::format("{} of {}: {}", labels.size() + 1, paths.size(), name));
  }
  return labels;
}

}  // namespace

QueueProgress::QueueProgress(std::ostream& err, decltype(QvCoFtpSetProgress)* set_listener)
    : err_(err), set_listener_(set_listener), watch_([this] { Interrupt(); }) {}

QueueProgress::~QueueProgress() {
  End();
  const std::lock_guard lock(mutex_);
  is_over_ = true;
  over_.notify_all();
}

void QueueProgress::Begin(const std::vector<std::string>& paths,
                          std::optional<std::uint64_t> bytes) {
  labels_ = LabelsOf(paths);
  total_ = bytes;
  if (set_listener_ != nullptr) set_listener_(Report, this);
  const std::lock_guard lock(mutex_);
  is_listening_ = set_listener_ != nullptr;
  if (TerminalWidth() == 0 || labels_.empty()) return;
  bar_ = std::make_unique<ProgressBar>(err_, TerminalWidth);
  bar_->Begin(labels_.front(), bytes);
}

void QueueProgress::End() {
  if (set_listener_ != nullptr) set_listener_(nullptr, nullptr);
  const std::lock_guard lock(mutex_);
  bar_.reset();
}

std::optional<std::uint64_t> QueueProgress::MovedBytes() const {
  if (set_listener_ == nullptr) return std::nullopt;
  return before_ + (file_done_ == file_total_ ? file_done_ : 0);
}

int QueueProgress::Report(const QvTransferProgress* progress, void* context) noexcept {
  auto& shown = *static_cast<QueueProgress*>(context);
  shown.Take(*progress);
  return shown.is_stopped_ ? 1 : 0;
}

void QueueProgress::Take(const QvTransferProgress& progress) {
  if (progress.file_index != index_) before_ = *MovedBytes();
  index_ = progress.file_index;
  file_done_ = progress.file_done;
  file_total_ = progress.file_total;
  const auto place = static_cast<std::size_t>(std::max(index_, 0));
  if (bar_ == nullptr || place >= labels_.size()) return;
  Progress now = {.label = labels_[place], .done = before_ + file_done_, .total = total_};
  if (!total_) {
    // Sizes become known one by one, so each file counts the same.
    const double of_file =
        file_total_ == 0 ? 0 : static_cast<double>(file_done_) / static_cast<double>(file_total_);
    now.share =
        (static_cast<double>(place) + std::min(of_file, 1.0)) / static_cast<double>(labels_.size());
  }
  bar_->Update(now);
}

void QueueProgress::Interrupt() {
  is_stopped_ = true;
  std::unique_lock lock(mutex_);
  if (is_listening_ && over_.wait_for(lock, kPatience, [this] { return is_over_; })) return;
  if (bar_ != nullptr) bar_->Clear();
  fmt::print(err_, "qvcall: interrupted\n");
  err_.flush();
  // Never unlocked: the program ends, and nothing may be shown after this.
  lock.release();
}

}  // namespace qv::tool
