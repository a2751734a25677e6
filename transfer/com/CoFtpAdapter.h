#pragma once

#include "CoFtpTable.h"
#include "qvnetcall/transfer/QvCoFtp.h"

namespace qv {

// The FTP component as the queues know it. A text for which there is no memory fails its call with
// E_OUTOFMEMORY.
class CoFtpAdapter final : public IQvCoFtp {
 public:
  // Takes over the caller's reference.
  explicit CoFtpAdapter(CoFtpObject* object) : component_(object) {}

  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password,
                   long* result) override;
  HRESULT AddUploadFile(const char* first, const char* second) override;
  HRESULT UploadFile(long option, long* count) override;
  HRESULT AddDownloadFile(const char* first, const char* second) override;
  HRESULT DownloadFile(long one, long option, long* count) override;
  HRESULT RenameServerFile(const char* old_path, const char* new_path, long* result) override;
  HRESULT FtpLogout(long* result) override;
  HRESULT DeleteServerFile(const char* path, long* result) override;
  HRESULT DeleteServerPath(const char* path, long* result) override;
  HRESULT IsOperatorFileSuc(const char* path, long* result) override;
  HRESULT AddFtpServer(const char* host, short port, const char* user, const char* password,
                       long* result) override;
  HRESULT AddCopyServerFile(const char* first, const char* second) override;
  HRESULT CopyServerFile(long option, long* count) override;
  HRESULT GetLastResult(long* result) override;
  HRESULT SetTransModel1(long value) override;
  HRESULT SetTransModel2(long value) override;
  void Release() override { delete this; }

  IUnknown* Unknown() const { return component_.Unknown(); }

 private:
  ~CoFtpAdapter() = default;

  ComReference<CoFtpObject> component_;
};

}  // namespace qv
