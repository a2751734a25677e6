// The calls that both components take in the same words.
#pragma once

#include "TransferDesk.h"

namespace qv::components {

// `Contract` is IQvCoFtp or IQvCoCSC.
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

  // Runs a queue, as UploadFile and DownloadFile do, whose arguments differ.
  HRESULT Run(TransferKind kind, long option, long* count) {
    return Guarded([&] { *count = Desk().Run(kind, option); });
  }
  // The component's own, beside the store that it uses to the end.
  virtual TransferDesk& Desk() = 0;
};

}  // namespace qv::components
