#include "ComCsc.h"

#include "Bstr.h"

namespace qv {

HRESULT ComCsc::FtpLogin(const char* host, short port, const char* user, const char* password,
                         long extra, long* result) {
  return component_->FtpLogin(Bstr(host).Get(), port, Bstr(user).Get(), Bstr(password).Get(), extra,
                              result);
}

HRESULT ComCsc::AddUploadFile(const char* first, const char* second) {
  return component_->AddUploadFile(Bstr(first).Get(), Bstr(second).Get());
}

HRESULT ComCsc::UploadFile(long option, long constant, long* count) {
  return component_->UploadFile(option, constant, count);
}

HRESULT ComCsc::AddDownloadFile(const char* first, const char* second) {
  return component_->AddDownloadFile(Bstr(first).Get(), Bstr(second).Get());
}

HRESULT ComCsc::DownloadFile(long one, long option, long constant, long* count) {
  return component_->DownloadFile(one, option, constant, count);
}

HRESULT ComCsc::RenameServerFile(const char* old_path, const char* new_path, long* result) {
  return component_->RenameServerFile(Bstr(old_path).Get(), Bstr(new_path).Get(), result);
}

HRESULT ComCsc::FtpLogout(long* result) { return component_->FtpLogout(result); }

HRESULT ComCsc::DeleteServerFile(const char* path, long* result) {
  return component_->DeleteServerFile(Bstr(path).Get(), result);
}

HRESULT ComCsc::DeleteServerPath(const char* path, long* result) {
  return component_->DeleteServerPath(Bstr(path).Get(), result);
}

HRESULT ComCsc::IsOperatorFileSuc(const char* path, long* result) {
  return component_->IsOperatorFileSuc(Bstr(path).Get(), result);
}

HRESULT ComCsc::AddCopyServerFile(const char* first, const char* second) {
  return component_->AddCopyServerFile(Bstr(first).Get(), Bstr(second).Get());
}

HRESULT ComCsc::CopyServerFile(long option, long* count) {
  return component_->CopyServerFile(option, count);
}

HRESULT ComCsc::GetLastResult(long* result) { return component_->GetLastResult(result); }

void ComCsc::Release() {
  component_->Release();
  delete this;
}

}  // namespace qv
