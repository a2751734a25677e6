#pragma once

#include "Dispatch.h"
#include "qvnetcall/transfer/QvCoCSC.h"

namespace qv {

// The cloud component behind its COM interface. Ends with Release; throws only std::bad_alloc.
class ComCsc final : public IQvCoCSC {
 public:
  // Takes over the caller's reference.
  explicit ComCsc(CscDispatch* component) : component_(component) {}
  ~ComCsc() = default;
  ComCsc(const ComCsc&) = delete;
  ComCsc& operator=(const ComCsc&) = delete;

  [[nodiscard]] IUnknown* Component() const { return component_; }

  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password, long extra,
                   long* result) override;
  HRESULT AddUploadFile(const char* first, const char* second) override;
  HRESULT UploadFile(long option, long constant, long* count) override;
  HRESULT AddDownloadFile(const char* first, const char* second) override;
  HRESULT DownloadFile(long one, long option, long constant, long* count) override;
  HRESULT RenameServerFile(const char* old_path, const char* new_path, long* result) override;
  HRESULT FtpLogout(long* result) override;
  HRESULT DeleteServerFile(const char* path, long* result) override;
  HRESULT DeleteServerPath(const char* path, long* result) override;
  HRESULT IsOperatorFileSuc(const char* path, long* result) override;
  HRESULT AddCopyServerFile(const char* first, const char* second) override;
  HRESULT CopyServerFile(long option, long* count) override;
  HRESULT GetLastResult(long* result) override;
  void Release() override;

 private:
  CscDispatch* const component_;
};

}  // namespace qv
