#include "ComFtp.h"

#include "Bstr.h"

namespace qv {

HRESULT ComFtp::FtpLogin(const char* host, short port, const char* user, const char* password,
                         long* result) {
  return component_->FtpLogin(Bstr(host).Get(), port, Bstr(user).Get(), Bstr(password).Get(),
                              result);
}

HRESULT ComFtp::AddUploadFile(const char* first, const char* second) {
  return component_->AddUploadFile(Bstr(first).Get(), Bstr(second).Get());
}

HRESULT ComFtp::UploadFile(long option, long* count) {
  return component_->UploadFile(option, count);
}

HRESULT ComFtp::AddDownloadFile(const char* first, const char* second) {
  return component_->AddDownloadFile(Bstr(first).Get(), Bstr(second).Get());
}

HRESULT ComFtp::DownloadFile(long one, long option, long* count) {
  return component_->DownloadFile(one, option, count);
}

HRESULT ComFtp::RenameServerFile(const char* old_path, const char* new_path, long* result) {
  return component_->RenameServerFile(Bstr(old_path).Get(), Bstr(new_path).Get(), result);
}

HRESULT ComFtp::FtpLogout(long* result) { return component_->FtpLogout(result); }

HRESULT ComFtp::DeleteServerFile(const char* path, long* result) {
  return component_->DeleteServerFile(Bstr(path).Get(), result);
}

HRESULT ComFtp::DeleteServerPath(const char* path, long* result) {
  return component_->DeleteServerPath(Bstr(path).Get(), result);
}

HRESULT ComFtp::IsOperatorFileSuc(const char* path, long* result) {
  return component_->IsOperatorFileSuc(Bstr(path).Get(), result);
}

HRESULT ComFtp::AddFtpServer(const char* host, short port, const char* user, const char* password,
                             long* result) {
  return component_->AddFtpServer(Bstr(host).Get(), port, Bstr(user).Get(), Bstr(password).Get(),
                                  result);
}

HRESULT ComFtp::AddCopyServerFile(const char* first, const char* second) {
  return component_->AddCopyServerFile(Bstr(first).Get(), Bstr(second).Get());
}

HRESULT ComFtp::CopyServerFile(long option, long* count) {
  return component_->CopyServerFile(option, count);
}

HRESULT ComFtp::GetLastResult(long* result) { return component_->GetLastResult(result); }

HRESULT ComFtp::SetTransModel1(long value) { return component_->SetTransModel1(value); }

HRESULT ComFtp::SetTransModel2(long value) { return component_->SetTransModel2(value); }

void ComFtp::Release() {
  component_->Release();
  delete this;
}

}  // namespace qv
