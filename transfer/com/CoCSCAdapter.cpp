#include "CoCSCAdapter.h"

namespace qv {

HRESULT CoCSCAdapter::FtpLogin(const char* host, short port, const char* user, const char* password,
                               long extra, long* result) {
  return component_.Call(&CoCSCTable::FtpLogin, host, port, user, password, extra, result);
}

HRESULT CoCSCAdapter::FtpLogout(long* result) {
  return component_.Call(&CoCSCTable::FtpLogout, result);
}

HRESULT CoCSCAdapter::AddUploadFile(const char* first, const char* second) {
  return component_.Call(&CoCSCTable::AddUploadFile, first, second);
}

HRESULT CoCSCAdapter::UploadFile(long option, long constant, long* count) {
  return component_.Call(&CoCSCTable::UploadFile, option, constant, count);
}

HRESULT CoCSCAdapter::AddDownloadFile(const char* first, const char* second) {
  return component_.Call(&CoCSCTable::AddDownloadFile, first, second);
}

HRESULT CoCSCAdapter::DownloadFile(long one, long option, long constant, long* count) {
  return component_.Call(&CoCSCTable::DownloadFile, one, option, constant, count);
}

HRESULT CoCSCAdapter::RenameServerFile(const char* old_path, const char* new_path, long* result) {
  return component_.Call(&CoCSCTable::RenameServerFile, old_path, new_path, result);
}

HRESULT CoCSCAdapter::DeleteServerFile(const char* path, long* result) {
  return component_.Call(&CoCSCTable::DeleteServerFile, path, result);
}

HRESULT CoCSCAdapter::DeleteServerPath(const char* path, long* result) {
  return component_.Call(&CoCSCTable::DeleteServerPath, path, result);
}

HRESULT CoCSCAdapter::IsOperatorFileSuc(const char* path, long* result) {
  return component_.Call(&CoCSCTable::IsOperatorFileSuc, path, result);
}

HRESULT CoCSCAdapter::AddCopyServerFile(const char* first, const char* second) {
  return component_.Call(&CoCSCTable::AddCopyServerFile, first, second);
}

HRESULT CoCSCAdapter::CopyServerFile(long option, long* count) {
  return component_.Call(&CoCSCTable::CopyServerFile, option, count);
}

HRESULT CoCSCAdapter::GetLastResult(long* result) {
  return component_.Call(&CoCSCTable::GetLastResult, result);
}

}  // namespace qv
