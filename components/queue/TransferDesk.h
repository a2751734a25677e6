// The calls to a component, independent of its protocol.
#pragma once

#include <exception>
#include <new>
#include <string>

#include "RemoteStore.h"
#include "TransferQueue.h"
#include "qvnetcall/transfer/ComError.h"

namespace qv::components {

// Runs `call` and turns an exception into a result, since no exception may leave a component.
template <class Call>
[[nodiscard]] HRESULT Guarded(const Call& call) noexcept {
  constexpr auto kOutOfMemory = static_cast<HRESULT>(0x8007000EU);
  constexpr auto kFailed = static_cast<HRESULT>(0x80004005U);
  try {
    call();
    return 0;
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  } catch (const std::exception&) {
    return kFailed;
  }
}

// The three queues of a component and the store that they use. Use from one thread.
class TransferDesk {
 public:
  TransferDesk() = default;
  // Removes what failed attempts left.
  ~TransferDesk();
  TransferDesk(const TransferDesk&) = delete;
  TransferDesk& operator=(const TransferDesk&) = delete;

  // Sets the store, which the caller owns; null for none. Empty the queues first if transfers with
  // the previous store failed.
  void Use(RemoteStore* store) { store_ = store; }

  void Add(TransferKind kind, const char* first, const char* second);
  // Returns the number of files that succeeded.
  long Run(TransferKind kind, long option);
  void Empty(TransferKind kind) { Queue(kind).Empty(store_); }
  // The result of the last Add() or Run().
  [[nodiscard]] long LastResult() const { return last_result_; }
  // Returns 1 for a file that succeeded in the last run, otherwise 0.
  [[nodiscard]] long HasSucceeded(const char* first) const;

  [[nodiscard]] long Rename(const char* from, const char* to);
  [[nodiscard]] long DeleteFile(const char* path);
  [[nodiscard]] long DeleteFolder(const char* path);

 private:
  [[nodiscard]] TransferQueue& Queue(TransferKind kind);

  RemoteStore* store_ = nullptr;
  TransferQueue uploads_{TransferKind::kUpload};
  TransferQueue downloads_{TransferKind::kDownload};
  TransferQueue copies_{TransferKind::kCopy};
  const TransferQueue* last_run_ = nullptr;
  QvTransferResult last_result_ = QvTransfer_Success;
};

// The calls that IQvCoFtp and IQvCoCSC, one of which is `Contract`, have in common.
template <class Contract>
class DeskComponent : public Contract {
 public:
  HRESULT AddUploadFile(const char* first, const char* second) final {
    return Guarded([&] { Desk().Add(TransferKind::kUpload, first, second); });
  }
  HRESULT AddDownloadFile(const char* first, const char* second) final {
    return Guarded([&] { Desk().Add(TransferKind::kDownload, first, second); });
  }
  HRESULT AddCopyServerFile(const char* first, const char* second) final {
    return Guarded([&] { Desk().Add(TransferKind::kCopy, first, second); });
  }
  HRESULT CopyServerFile(long option, long* count) final {
    return Run(TransferKind::kCopy, option, count);
  }
  HRESULT GetLastResult(long* result) final {
    *result = Desk().LastResult();
    return 0;
  }
  HRESULT IsOperatorFileSuc(const char* path, long* result) final {
    return Guarded([&] { *result = Desk().HasSucceeded(path); });
  }

  HRESULT RenameServerFile(const char* old_path, const char* new_path, long* result) final {
    return Guarded([&] { *result = Desk().Rename(old_path, new_path); });
  }
  HRESULT DeleteServerFile(const char* path, long* result) final {
    return Guarded([&] { *result = Desk().DeleteFile(path); });
  }
  HRESULT DeleteServerPath(const char* path, long* result) final {
    return Guarded([&] { *result = Desk().DeleteFolder(path); });
  }

  void Release() final { delete this; }

 protected:
  virtual ~DeskComponent() = default;

  // Runs a queue, for UploadFile and DownloadFile, whose arguments differ.
  HRESULT Run(TransferKind kind, long option, long* count) {
    return Guarded([&] { *count = Desk().Run(kind, option); });
  }
  // A member of the component, declared after the store, which it uses in its destructor.
  virtual TransferDesk& Desk() = 0;
};

}  // namespace qv::components
