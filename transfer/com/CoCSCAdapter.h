#pragma once

#include "CoCSCTable.h"
#include "qvnetcall/transfer/QvCoCSC.h"

namespace qv {

// The cloud storage component as the queues know it. A text for which there is no memory fails its
// call with E_OUTOFMEMORY.
class CoCSCAdapter final : public IQvCoCSC {
 public:
  // Takes over the caller's reference.
  explicit CoCSCAdapter(CoCSCObject* object) : component_(object) {}

  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password, long extra,
                   long* result) override;
  HRESULT FtpLogout(long* result) override;
  HRESULT AddUploadFile(const char* first, const char* second) override;
  HRESULT UploadFile(long option, long constant, long* count) override;
  HRESULT AddDownloadFile(const char* first, const char* second) override;
  HRESULT DownloadFile(long one, long option, long constant, long* count) override;
  HRESULT RenameServerFile(const char* old_path, const char* new_path, long* result) override;
  HRESULT DeleteServerFile(const char* path, long* result) override;
  HRESULT DeleteServerPath(const char* path, long* result) override;
  HRESULT IsOperatorFileSuc(const char* path, long* result) override;
  HRESULT AddCopyServerFile(const char* first, const char* second) override;
  HRESULT CopyServerFile(long option, long* count) override;
  HRESULT GetLastResult(long* result) override;
  void Release() override { delete this; }

  IUnknown* Unknown() const { return component_.Unknown(); }

 private:
  ~CoCSCAdapter() = default;

  ComReference<CoCSCObject> component_;
};

}  // namespace qv
