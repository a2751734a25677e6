#pragma once

#include "Dispatch.h"
#include "qvnetcall/transfer/QvCoFtp.h"

namespace qv {

// The FTP component behind its COM interface. Ends with Release; throws only std::bad_alloc.
class ComFtp final : public IQvCoFtp {
 public:
  // Takes over the caller's reference.
  explicit ComFtp(FtpDispatch* component) : component_(component) {}
  ~ComFtp() = default;
  ComFtp(const ComFtp&) = delete;
  ComFtp& operator=(const ComFtp&) = delete;

  [[nodiscard]] IUnknown* Component() const { return component_; }

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
  void Release() override;

 private:
  FtpDispatch* const component_;
};

}  // namespace qv
