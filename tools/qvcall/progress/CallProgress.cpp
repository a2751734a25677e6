#include "CallProgress.h"

#include <fmt/ostream.h>

#include <chrono>
#include <utility>

#include "qvnetcall/transport/NetworkProgress.h"
#include "tools/qvcall/system/SystemPlaces.h"

namespace qv::tool {
namespace {

// How long to wait for a call that was cancelled. Transports and drivers of others may not notice.
constexpr std::chrono::seconds kPatience{3};
// An answer that comes sooner is not worth a line that appears and vanishes.
constexpr std::chrono::milliseconds kBeforeDrawing{500};

// Each transport reports on its own calls. One of another vendor may lack the function.
void Listen(NetworkProgress callback, void* context) {
  for (const char* name : {"NetworkTransSetProgress", "HttpworkTransSetProgress"}) {
    const auto set = LoadedFunction<decltype(NetworkTransSetProgress)>(name);
    if (set != nullptr) set(callback, context);
  }
}

}  // namespace

CallProgress::CallProgress(std::ostream& err) : err_(err), watch_([this] { Interrupt(); }) {
  CRvoCancel::SetForThread(&cancel_);
}

CallProgress::~CallProgress() {
  End();
  CRvoCancel::SetForThread(nullptr);
  const std::lock_guard lock(mutex_);
  is_over_ = true;
  over_.notify_all();
}

void CallProgress::Begin() { Show("Waiting", std::nullopt); }

void CallProgress::Begin(std::string sending, std::uint64_t bytes) {
  is_sending_ = true;
  Show(std::move(sending), bytes);
}

void CallProgress::Show(std::string label, std::optional<std::uint64_t> bytes) {
  const std::lock_guard lock(mutex_);
  label_ = std::move(label);
  if (TerminalWidth() == 0) return;
  bar_ = std::make_unique<ProgressBar>(err_, TerminalWidth, kBeforeDrawing);
  bar_->Begin(label_, bytes);
  Listen(Report, this);
}

void CallProgress::End() {
  Listen(nullptr, nullptr);
  is_sending_ = false;
  const std::lock_guard lock(mutex_);
  bar_.reset();
}

// The transport reports the request first, then that the server works, and the reply at the end.
void CallProgress::Report(std::uint64_t done, std::uint64_t total, int kind, void* context) {
  auto& shown = *static_cast<CallProgress*>(context);
  if (shown.bar_ == nullptr) return;
  if (kind == NetworkProgress_Working) {
    shown.bar_->Update({.label = "The server is at work"});
  } else if (kind == NetworkProgress_Message && shown.is_sending_) {
    shown.is_sending_ = done < total;
    if (shown.is_sending_) return shown.bar_->Advance(done);
    shown.bar_->Begin("Waiting", std::nullopt);
  }
}

void CallProgress::Interrupt() {
  cancel_.Cancel();
  std::unique_lock lock(mutex_);
  if (over_.wait_for(lock, kPatience, [this] { return is_over_; })) return;
  if (bar_ != nullptr) bar_->Clear();
  fmt::print(err_, "qvcall: interrupted; what the call should change may or may not be changed\n");
  err_.flush();
  // Never unlocked: the program ends, and nothing may be shown after this.
  lock.release();
}

}  // namespace qv::tool
