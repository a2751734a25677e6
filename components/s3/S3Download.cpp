#include "S3Download.h"

#include <string_view>

#include "base/platform/Platform.h"

namespace qv::components {

QvTransferResult S3Download::Run() {
  ContinuePart();
  S3Request request{.bucket = object_.bucket, .key = object_.key};
  if (target_) {
    request.headers = {{"if-match", resume_.tag},
                       {"range", "bytes=" + std::to_string(resume_.done) + "-"}};
  }
  return Settle(session_.Receive(request, *this, *this));
}

void S3Download::ContinuePart() {
  if (resume_.IsEmpty()) return;
  if (resume_.done != 0) target_ = LocalTarget::Continue(local_, resume_.part, resume_.done);
  if (target_) return;
  platform::RemoveFile(resume_.part);
  resume_ = {};
}

QvTransferResult S3Download::Begin(const S3Head& head) {
  // Without a length it is impossible to tell whether everything arrived.
  if (!head.length) return QvTransfer_BadAnswer;
  return head.status == 206 ? BeginRest(head) : BeginWhole(head);
}

QvTransferResult S3Download::BeginRest(const S3Head& head) {
  if (!target_) return QvTransfer_BadAnswer;
  total_ = resume_.done + *head.length;
  const std::string range = "bytes " + std::to_string(resume_.done) + "-" +
                            std::to_string(total_ - 1) + "/" + std::to_string(total_);
  if (total_ <= resume_.done || head.range != range) return QvTransfer_BadAnswer;
  return head.etag == resume_.tag ? QvTransfer_Success : QvTransfer_BadAnswer;
}

QvTransferResult S3Download::BeginWhole(const S3Head& head) {
  // A server that does not support ranges sends the whole object.
  Discard();
  target_ = LocalTarget::Create(local_);
  if (!target_) return QvTransfer_LocalFile;
  total_ = *head.length;
  resume_ = {.part = target_->Part(), .tag = head.etag};
  return QvTransfer_Success;
}

// A server may send more than it announced.
QvTransferResult S3Download::Write(std::span<const char> bytes) {
  if (bytes.size() > total_ - target_->Size()) return QvTransfer_BadAnswer;
  return target_->Write(bytes) ? QvTransfer_Success : QvTransfer_LocalFile;
}

bool S3Download::Moved(std::uint64_t, std::uint64_t) {
  return meter_.Moved(target_ ? target_->Size() : 0, total_);
}

QvTransferResult S3Download::Settle(const S3Answer& answer) {
  const long status = answer.head.status;
  QvTransferResult result = answer.result;
  if (result == QvTransfer_Success) {
    const bool is_whole = target_ && target_->Size() == total_;
    if (!is_whole) result = QvTransfer_BadAnswer;
    if (is_whole && !target_->Finish()) result = QvTransfer_LocalFile;
    if (result == QvTransfer_Success) resume_ = {};
  }
  if (result == QvTransfer_Success) return result;
  const bool is_worth_more = result == QvTransfer_Broken || result == QvTransfer_Stopped ||
                             result == QvTransfer_CannotConnect;
  // The object has changed since the part was downloaded.
  const bool has_changed = status == 412 || status == 416;
  if (!is_worth_more || has_changed || resume_.tag.empty() || !target_) {
    Discard();
    return result;
  }
  resume_.done = target_->Size();
  if (target_->Pause()) return result;
  Discard();
  return QvTransfer_LocalFile;
}

void S3Download::Discard() {
  target_.reset();
  resume_ = {};
}

}  // namespace qv::components
