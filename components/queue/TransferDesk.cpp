#include "TransferDesk.h"

#include "RemoteStore.h"

namespace qv::components {

TransferDesk::~TransferDesk() {
  for (const auto kind : {TransferKind::kUpload, TransferKind::kDownload, TransferKind::kCopy}) {
    static_cast<void>(Guarded([&] { Empty(kind); }));
  }
}

TransferQueue& TransferDesk::Queue(TransferKind kind) {
  if (kind == TransferKind::kUpload) return uploads_;
  return kind == TransferKind::kDownload ? downloads_ : copies_;
}

void TransferDesk::Add(TransferKind kind, const char* first, const char* second) {
  last_result_ = Queue(kind).Add(first, second);
}

long TransferDesk::Run(TransferKind kind, long option) {
  TransferQueue& queue = Queue(kind);
  last_run_ = &queue;
  const RunOutcome outcome = queue.Run(store_, option);
  last_result_ = outcome.result;
  return outcome.count;
}

long TransferDesk::HasSucceeded(const char* first) const {
  return last_run_ != nullptr && last_run_->HasSucceeded(first) ? 1 : 0;
}

long TransferDesk::Rename(const char* from, const char* to) {
  const auto old_path = RemotePath(from);
  const auto new_path = RemotePath(to);
  if (!old_path || !new_path) return QvTransfer_BadArgument;
  return store_ != nullptr ? store_->Rename(*old_path, *new_path) : QvTransfer_NotLoggedIn;
}

long TransferDesk::DeleteFile(const char* path) {
  const auto server_path = RemotePath(path);
  if (!server_path) return QvTransfer_BadArgument;
  return store_ != nullptr ? store_->DeleteFile(*server_path) : QvTransfer_NotLoggedIn;
}

long TransferDesk::DeleteFolder(const char* path) {
  const auto server_path = RemotePath(path);
  if (!server_path) return QvTransfer_BadArgument;
  return store_ != nullptr ? store_->DeleteFolder(*server_path) : QvTransfer_NotLoggedIn;
}

}  // namespace qv::components
