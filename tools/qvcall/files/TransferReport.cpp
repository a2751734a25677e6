#include "TransferReport.h"

#include <fmt/ostream.h>

#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/progress/ProgressLine.h"

namespace qv::tool {

namespace {

// A hostile server could cause any number of failures.
constexpr std::size_t kMostNamedAgain = 1000;

}  // namespace

void TransferReport::Done(std::optional<std::uint64_t> bytes, std::size_t files) {
  done_ += files;
  bytes_ = bytes_ && bytes ? std::optional(*bytes_ + *bytes) : std::nullopt;
}

void TransferReport::Fail(std::string_view subject, std::string_view reason) {
  fmt::print(err_, "qvcall: {}: {}\n", Visible(subject), reason);
  if (++failures_ <= kMostNamedAgain) failed_.emplace_back(subject);
}

void TransferReport::Fail(std::string_view subject, Call call, int code) {
  const Failure failure = DescribeFailure(call, session_.Way(), code, session_.LastReason());
  Fail(subject, failure.what);
  // The same hint is printed once for consecutive files.
  if (failure.hint.empty() || failure.hint == last_hint_) return;
  fmt::print(err_, "  {}\n", failure.hint);
  last_hint_ = failure.hint;
}

int TransferReport::Finish(std::string_view remark) const {
  if (done_ > 0 || failures_ == 0) {
    fmt::print(err_, "done ({} {}{}{}{})\n", done_, done_ == 1 ? "file" : "files",
               bytes_ ? ", " + SizeText(*bytes_) : "", remark.empty() ? "" : ", ", remark);
  }
  if (failures_ == 0) return kDone;
  if (done_ + failures_ > 1) {
    fmt::print(err_, "qvcall: {} failed:\n", failures_);
    for (const std::string& subject : failed_) fmt::print(err_, "  {}\n", Visible(subject));
    const std::size_t more = failures_ - failed_.size();
    if (more > 0) fmt::print(err_, "  and {} more\n", more);
  }
  return kFailed;
}

}  // namespace qv::tool
