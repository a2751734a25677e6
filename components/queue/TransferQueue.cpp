#include "TransferQueue.h"

#include <optional>

#include "RemoteStore.h"
#include "Retries.h"
#include "base/platform/Platform.h"

namespace qv::components {

namespace {

// Returns the path in the form in which it is used, or nothing if it is not valid.
std::optional<std::string> Usable(const std::string& path, bool is_local) {
  if (!is_local) return RemotePath(path);
  return path.empty() ? std::nullopt : std::optional(path);
}

}  // namespace

QvTransferResult TransferQueue::Add(const std::string& first, const std::string& second) {
  if (is_done_) pairs_.clear();
  is_done_ = false;
  pairs_.push_back({first, second, {}, false});
  const bool is_usable = Usable(first, kind_ == TransferKind::kUpload) &&
                         Usable(second, kind_ == TransferKind::kDownload);
  return is_usable ? QvTransfer_Success : QvTransfer_BadArgument;
}

RunOutcome TransferQueue::Run(RemoteStore* store, long option) {
  RunMeter meter(pairs_.size());
  RunOutcome outcome;
  bool goes_on = true;
  outcomes_.clear();
  for (std::size_t i = 0; i < pairs_.size(); ++i) {
    Pair& pair = pairs_[i];
    if (!pair.has_succeeded && goes_on) {
      meter.Begin(pair.first, i);
      const QvTransferResult result = Move(store, pair, option, meter);
      pair.has_succeeded = result == QvTransfer_Success;
      meter.End(pair.has_succeeded);
      if (outcome.result == QvTransfer_Success) outcome.result = result;
      goes_on = !EndsRun(result);
    }
    if (pair.has_succeeded) ++outcome.count;
    outcomes_.try_emplace(pair.first, true).first->second &= pair.has_succeeded;
  }
  is_done_ = outcome.result == QvTransfer_Success;
  return outcome;
}

QvTransferResult TransferQueue::Move(RemoteStore* store, Pair& pair, long option,
                                     RunMeter& meter) const {
  if (store == nullptr) return QvTransfer_NotLoggedIn;
  if (meter.IsStopped()) return QvTransfer_Stopped;
  Retries retries(option);
  QvTransferResult result = TryOnce(*store, pair, meter);
  while (retries.AnotherAfter(result)) {
    if (!meter.Wait(retries.NextPause())) return QvTransfer_Stopped;
    meter.TryAgain();
    result = TryOnce(*store, pair, meter);
  }
  return result;
}

QvTransferResult TransferQueue::TryOnce(RemoteStore& store, Pair& pair, RunMeter& meter) const {
  const auto first = Usable(pair.first, kind_ == TransferKind::kUpload);
  const auto second = Usable(pair.second, kind_ == TransferKind::kDownload);
  if (!first || !second) return QvTransfer_BadArgument;
  switch (kind_) {
    case TransferKind::kUpload:
      return store.Upload(*first, *second, pair.resume, meter);
    case TransferKind::kDownload:
      return store.Download(*first, *second, pair.resume, meter);
    case TransferKind::kCopy:
      break;
  }
  return store.Copy(*first, *second, pair.resume, meter);
}

bool TransferQueue::HasSucceeded(const std::string& first) const {
  const auto found = outcomes_.find(first);
  return found != outcomes_.end() && found->second;
}

void TransferQueue::Empty(RemoteStore* store) {
  bool is_reachable = store != nullptr;
  for (const Pair& pair : pairs_) {
    if (pair.resume.IsEmpty()) continue;
    if (kind_ == TransferKind::kDownload) {
      platform::RemoveFile(pair.resume.part);
    } else if (is_reachable) {
      is_reachable = store->Abandon(RemotePath(pair.second).value_or(""), pair.resume);
    }
  }
  pairs_.clear();
  outcomes_.clear();
  is_done_ = false;
}

}  // namespace qv::components
