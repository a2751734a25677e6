#include "TransferProgress.h"

#include <fmt/ostream.h>

#include <utility>

#include "ProgressBar.h"
#include "qvnetcall/transport/NetworkProgress.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/system/SystemPlaces.h"
#include "tools/qvcall/system/Terminal.h"

namespace qv::tool {
namespace {

decltype(NetworkTransSetProgress)* Listening() {
  if (TerminalWidth() == 0) return nullptr;
  return LoadedFunction<decltype(NetworkTransSetProgress)>("NetworkTransSetProgress");
}

}  // namespace

TransferProgress::TransferProgress(std::ostream& err, std::function<void()> clean_up)
    : err_(err),
      clean_up_(std::move(clean_up)),
      set_listener_(Listening()),
      watch_([this] { ShowInterrupted(); }) {
  if (set_listener_ != nullptr) set_listener_(Report, this);
}

TransferProgress::~TransferProgress() {
  if (set_listener_ != nullptr) set_listener_(nullptr, nullptr);
  End();
}

void TransferProgress::Begin(std::string label, std::optional<std::uint64_t> bytes) {
  End();
  const std::lock_guard lock(mutex_);
  label_ = std::move(label);
  total_ = bytes;
  if (TerminalWidth() == 0) return;
  bar_ = std::make_unique<ProgressBar>(err_, TerminalWidth);
  bar_->Begin(label_, bytes);
}

void TransferProgress::End() {
  const std::lock_guard lock(mutex_);
  bar_.reset();
  label_.clear();
}

void TransferProgress::Report(std::uint64_t done, std::uint64_t total, int kind, void* context) {
  auto& shown = *static_cast<TransferProgress*>(context);
  if (kind != NetworkProgress_File || shown.bar_ == nullptr) return;
  if (shown.total_ != total) {
    // The total was not known before, or the file has changed since its size was read.
    shown.total_ = total;
    shown.bar_->Begin(shown.label_, total);
  }
  shown.bar_->Advance(done);
}

void TransferProgress::ShowInterrupted() {
  // Never unlocked: the program ends, and nothing may be shown after the message below.
  mutex_.lock();
  if (bar_ != nullptr) bar_->Clear();
  clean_up_();
  fmt::print(err_, "qvcall: interrupted{}{}\n", label_.empty() ? "" : " at ", Visible(label_));
  err_.flush();
}

}  // namespace qv::tool
