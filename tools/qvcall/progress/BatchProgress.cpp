#include "BatchProgress.h"

#include <fmt/ostream.h>

#include "ProgressBar.h"
#include "qvnetcall/transport/NetworkProgress.h"
#include "tools/qvcall/system/InterruptWatch.h"
#include "tools/qvcall/system/LoadedFunction.h"
#include "tools/qvcall/system/Terminal.h"

namespace qv::tool {

struct BatchProgress::Shown {
  Shown(std::string_view sending, std::uint64_t bytes, std::ostream& err);
  ~Shown();

  static void Report(std::uint64_t done, std::uint64_t total, int kind, void* context);

  // Another maker's transport may have none.
  decltype(NetworkTransSetProgress)* const set_listener =
      LoadedFunction<decltype(NetworkTransSetProgress)>("NetworkTransSetProgress");
  bool is_sent = false;
  ProgressBar bar;
  InterruptWatch watch;  // before the bar has a thread, and gone before the bar is
};

BatchProgress::Shown::Shown(std::string_view sending, std::uint64_t bytes, std::ostream& err)
    : bar(err, TerminalWidth), watch([this, &err] {
        bar.Clear();
        fmt::print(err,
                   "qvcall: interrupted; the batch may have been run or not: look at the data "
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

// The transport tells of the request first, then of the reply.
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
