#include "CoFtpAdapter.h"

namespace qv {

HRESULT CoFtpAdapter::FtpLogin(const char* host, short port, const char* user, const char* password,
                               long* result) {
  return component_.Call(&CoFtpTable::FtpLogin, host, port, user, password, result);
}

HRESULT CoFtpAdapter::UploadFile(long option, long* count) {
  return component_.Call(&CoFtpTable::UploadFile, option, count);
}

HRESULT CoFtpAdapter::DownloadFile(long one, long option, long* count) {
  return component_.Call(&CoFtpTable::DownloadFile, one, option, count);
}

HRESULT CoFtpAdapter::AddFtpServer(const char* host, short port, const char* user,
                                   const char* password, long* result) {
  return component_.Call(&CoFtpTable::AddFtpServer, host, port, user, password, result);
}

HRESULT CoFtpAdapter::SetTransModel1(long value) {
  return component_.Call(&CoFtpTable::SetTransModel1, value);
}

HRESULT CoFtpAdapter::SetTransModel2(long value) {
  return component_.Call(&CoFtpTable::SetTransModel2, value);
}

}  // namespace qv
