#include "S3Parts.h"

#include <algorithm>
#include <utility>

namespace qv::components {

namespace {

constexpr std::uint64_t kMaxParts = 10000;
constexpr std::uint64_t kMebibyte = 1U << 20;
// Far more pages than the parts need. A server that sends more is malfunctioning.
constexpr int kMaxPages = 1000;

// Maps the progress of a part to the whole object.
class PartMeter final : public TransferMeter {
 public:
  PartMeter(TransferMeter& whole, std::uint64_t before, std::uint64_t total)
      : whole_(whole), before_(before), total_(total) {}
  bool Moved(std::uint64_t done, std::uint64_t) override {
    return whole_.Moved(before_ + done, total_);
  }

 private:
  TransferMeter& whole_;
  std::uint64_t before_;
  std::uint64_t total_;
};

}  // namespace

PartPlan PartPlan::For(std::uint64_t total, std::uint64_t part_bytes) {
  const std::uint64_t least = total / kMaxParts + 1;
  if (part_bytes < least) part_bytes = (least / kMebibyte + 1) * kMebibyte;
  return {.total = total, .part_bytes = part_bytes};
}

int PartPlan::Count() const {
  return static_cast<int>(total / part_bytes + (total % part_bytes == 0 ? 0 : 1));
}

std::uint64_t PartPlan::Start(int number) const {
  return static_cast<std::uint64_t>(number - 1) * part_bytes;
}

std::uint64_t PartPlan::Length(int number) const {
  return std::min(part_bytes, total - Start(number));
}

S3Parts::S3Parts(S3Session& session, const S3Path& target, const PartPlan& plan, std::string source,
                 Resume& resume)
    : session_(session),
      target_(target),
      plan_(plan),
      source_(std::move(source)),
      resume_(resume),
      parts_(static_cast<std::size_t>(plan.Count())) {}

QvTransferResult S3Parts::Run(const Move& move, TransferMeter& meter) {
  QvTransferResult result = QvTransfer_Success;
  if (!IsResumed(result)) result = Begin();
  if (result == QvTransfer_Success) result = MoveRest(move, meter);
  if (result == QvTransfer_Success) result = Complete(meter);
  if (result == QvTransfer_Success) resume_ = {};
  return result;
}

QvTransferResult S3Parts::Abandon(S3Session& session, const S3Path& target, const Resume& resume) {
  return session
      .Ask({.method = "DELETE",
            .bucket = target.bucket,
            .key = target.key,
            .query = {{"uploadId", resume.part}}})
      .result;
}

QvTransferResult S3Parts::Begin() {
  S3Request request{.method = "POST", .bucket = target_.bucket, .key = target_.key};
  request.query = {{"uploads", ""}};
  const S3Answer answer = session_.Ask(request);
  if (!answer.IsFine()) return answer.result;
  const auto upload = ReadText(answer.body, "InitiateMultipartUploadResult", "UploadId");
  if (!upload || upload->empty()) return QvTransfer_BadAnswer;
  resume_ = {.part = *upload, .tag = source_};
  return QvTransfer_Success;
}

bool S3Parts::IsResumed(QvTransferResult& result) {
  if (resume_.IsEmpty()) return false;
  if (resume_.tag != source_) {
    static_cast<void>(Abandon(session_, target_, resume_));
    resume_ = {};
    return false;
  }
  resume_.done = 0;
  result = TakeStock();
  // Servers remove unfinished uploads after some time.
  if (result != QvTransfer_NotFound) return true;
  resume_ = {};
  return false;
}

QvTransferResult S3Parts::TakeStock() {
  S3Request request = RequestFor("GET");
  for (int page = 0; page != kMaxPages; ++page) {
    const S3Answer answer = session_.Ask(request);
    if (answer.head.status == 404) return QvTransfer_NotFound;
    if (!answer.IsFine()) return answer.result;
    const std::optional<S3PartListing> listing = ReadParts(answer.body);
    if (!listing) return QvTransfer_BadAnswer;
    for (const S3Part& part : listing->parts) Keep(part);
    if (!listing->next) return QvTransfer_Success;
    request = RequestFor("GET");
    request.query.emplace_back("part-number-marker", *listing->next);
  }
  return QvTransfer_BadAnswer;
}

void S3Parts::Keep(const S3Part& part) {
  // A part of another length is replaced by sending it again.
  if (part.number < 1 || part.number > plan_.Count()) return;
  if (part.bytes != plan_.Length(part.number)) return;
  S3Part& kept = parts_[static_cast<std::size_t>(part.number - 1)];
  if (kept.etag.empty()) resume_.done += part.bytes;
  kept = part;
}

QvTransferResult S3Parts::MoveRest(const Move& move, TransferMeter& meter) {
  for (int number = 1; number <= plan_.Count(); ++number) {
    if (!parts_[static_cast<std::size_t>(number - 1)].etag.empty()) continue;
    S3Request request = RequestFor("PUT");
    request.query.emplace_back("partNumber", std::to_string(number));
    PartMeter part_meter(meter, resume_.done, plan_.total);
    const std::uint64_t length = plan_.Length(number);
    const S3Answer answer = move(std::move(request), plan_.Start(number), length, part_meter);
    // If a part is not found, either the upload or the source is missing. The next attempt looks up
    // the source.
    if (answer.code == "NoSuchUpload") resume_ = {};
    if (!answer.IsFine()) return answer.result;
    if (answer.head.etag.empty()) return QvTransfer_BadAnswer;
    Keep({.number = number, .bytes = length, .etag = answer.head.etag});
  }
  return QvTransfer_Success;
}

QvTransferResult S3Parts::Complete(TransferMeter& meter) {
  PartMeter at_the_end(meter, plan_.total, plan_.total);
  const S3Answer answer =
      session_.AskAndWait(RequestFor("POST"), CompletionXml(parts_), plan_.total, at_the_end);
  // The parts on the server are no longer those that were sent.
  if (answer.code == "InvalidPart" || answer.code == "NoSuchUpload") {
    static_cast<void>(Abandon(session_, target_, resume_));
    resume_ = {};
  }
  if (!answer.IsFine()) return answer.result;
  const bool is_complete =
      ReadText(answer.body, "CompleteMultipartUploadResult", "ETag").has_value();
  return is_complete ? QvTransfer_Success : QvTransfer_BadAnswer;
}

S3Request S3Parts::RequestFor(const char* method) const {
  return {.method = method,
          .bucket = target_.bucket,
          .key = target_.key,
          .query = {{"uploadId", resume_.part}}};
}

}  // namespace qv::components
