#include "TransferReport.h"

#include <fmt/ostream.h>

#include <utility>

#include "DisplayWidth.h"
#include "ProgressLine.h"

namespace qv {

void TransferReport::Done(std::optional<std::uint64_t> bytes, std::size_t files) {
  done_ += files;
  bytes_ = bytes_ && bytes ? std::optional(*bytes_ + *bytes) : std::nullopt;
}

void TransferReport::Fail(std::string_view subject, std::string_view reason) {
  fmt::print(err_, "qvcall: {}: {}\n", Visible(subject), reason);
  failed_.emplace_back(subject);
}

void TransferReport::Fail(std::string_view subject, Call call, int code) {
  const ReturnCode words = ExplainResult(call, session_.Way(), code);
  Fail(subject, fmt::format("{} (result {})", words.meaning, code));
  // Once for all files that one thing keeps from being moved.
  if (std::exchange(last_advice_, words.advice) == words.advice) return;
  fmt::print(err_, "  {}\n", words.advice);
}

int TransferReport::Finish(std::string_view remark) const {
  if (done_ > 0 || failed_.empty()) {
    fmt::print(err_, "done ({} {}{}{}{})\n", done_, done_ == 1 ? "file" : "files",
               bytes_ ? ", " + SizeText(*bytes_) : "", remark.empty() ? "" : ", ", remark);
  }
  if (failed_.empty()) return kDone;
  if (done_ + failed_.size() > 1) {
    fmt::print(err_, "qvcall: {} failed:\n", failed_.size());
    for (const std::string& subject : failed_) fmt::print(err_, "  {}\n", Visible(subject));
  }
  return kFailed;
}

}  // namespace qv
