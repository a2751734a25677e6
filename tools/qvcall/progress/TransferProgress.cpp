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

struct BatchProgress::Shown {
  Shown(std::string_view sending, std::uint64_t bytes, std::ostream& err);
  ~Shown();

  static void Report(std::uint64_t done, std::uint64_t total, int kind, void* context);

  // Null if the transport in use does not export it.
  decltype(NetworkTransSetProgress)* const set_listener =
      LoadedFunction<decltype(NetworkTransSetProgress)>("NetworkTransSetProgress");
  bool is_sent = false;
  ProgressBar bar;
  InterruptWatch watch;  // made before the bar starts its thread, destroyed before the bar
};

BatchProgress::Shown::Shown(std::string_view sending, std::uint64_t bytes, std::ostream& err)
    : bar(err, TerminalWidth), watch([this, &err] {
        bar.Clear();
        fmt::print(err,
                   "qvcall: interrupted; the batch may or may not have been run: check the data "
                   "before running it again\n");
        err.flush();
      }) {
  if (set_listener == nullptr) {
    bar.Begin("Running the batch", std::nullopt);
    return;
  }
  bar.Begin(sending, bytes);
  set_listener(Report, this);
}

BatchProgress::Shown::~Shown() {
  if (set_listener != nullptr) set_listener(nullptr, nullptr);
  bar.Clear();
}

// The transport reports the request first, then the reply.
void BatchProgress::Shown::Report(std::uint64_t done, std::uint64_t total, int kind,
                                  void* context) {
  auto& shown = *static_cast<Shown*>(context);
  if (kind != NetworkProgress_Message || shown.is_sent) return;
  shown.bar.Advance(done);
  if (done < total) return;
  shown.is_sent = true;
  shown.bar.Begin("Waiting for the server", std::nullopt);
}

BatchProgress::BatchProgress(std::string_view sending, std::uint64_t bytes, std::ostream& err) {
  if (TerminalWidth() != 0) shown_ = std::make_unique<Shown>(sending, bytes, err);
}

BatchProgress::~BatchProgress() = default;

}  // namespace qv::tool
