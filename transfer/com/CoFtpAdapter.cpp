#include "CoFtpAdapter.h"

namespace qv {

HRESULT CoFtpAdapter::FtpLogin(const char* host, short port, const char* user, const char* password,
                               long* result) {
  return component_.Call(&CoFtpTable::FtpLogin, host, port, user, password, result);
}

HRESULT CoFtpAdapter::AddUploadFile(const char* first, const char* second) {
  return component_.Call(&CoFtpTable::AddUploadFile, first, second);
}

HRESULT CoFtpAdapter::UploadFile(long option, long* count) {
  return component_.Call(&CoFtpTable::UploadFile, option, count);
}

HRESULT CoFtpAdapter::AddDownloadFile(const char* first, const char* second) {
  return component_.Call(&CoFtpTable::AddDownloadFile, first, second);
}

HRESULT CoFtpAdapter::DownloadFile(long one, long option, long* count) {
  return component_.Call(&CoFtpTable::DownloadFile, one, option, count);
}

HRESULT CoFtpAdapter::RenameServerFile(const char* old_path, const char* new_path, long* result) {
  return component_.Call(&CoFtpTable::RenameServerFile, old_path, new_path, result);
}

HRESULT CoFtpAdapter::FtpLogout(long* result) {
  return component_.Call(&CoFtpTable::FtpLogout, result);
}

HRESULT CoFtpAdapter::DeleteServerFile(const char* path, long* result) {
  return component_.Call(&CoFtpTable::DeleteServerFile, path, result);
}

HRESULT CoFtpAdapter::DeleteServerPath(const char* path, long* result) {
  return component_.Call(&CoFtpTable::DeleteServerPath, path, result);
}

HRESULT CoFtpAdapter::IsOperatorFileSuc(const char* path, long* result) {
  return component_.Call(&CoFtpTable::IsOperatorFileSuc, path, result);
}

HRESULT CoFtpAdapter::AddFtpServer(const char* host, short port, const char* user,
                                   const char* password, long* result) {
  return component_.Call(&CoFtpTable::AddFtpServer, host, port, user, password, result);
}

HRESULT CoFtpAdapter::AddCopyServerFile(const char* first, const char* second) {
  return component_.Call(&CoFtpTable::AddCopyServerFile, first, second);
}

HRESULT CoFtpAdapter::CopyServerFile(long option, long* count) {
  return component_.Call(&CoFtpTable::CopyServerFile, option, count);
}

HRESULT CoFtpAdapter::GetLastResult(long* result) {
  return component_.Call(&CoFtpTable::GetLastResult, result);
}

HRESULT CoFtpAdapter::SetTransModel1(long value) {
  return component_.Call(&CoFtpTable::SetTransModel1, value);
}

HRESULT CoFtpAdapter::SetTransModel2(long value) {
  return component_.Call(&CoFtpTable::SetTransModel2, value);
}

}  // namespace qv
