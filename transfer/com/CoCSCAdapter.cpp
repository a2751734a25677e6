#include "CoCSCAdapter.h"

namespace qv {

HRESULT CoCSCAdapter::FtpLogin(const char* host, short port, const char* user, const char* password,
                               long extra, long* result) {
  return component_.Call(&CoCSCTable::FtpLogin, host, port, user, password, extra, result);
}

HRESULT CoCSCAdapter::UploadFile(long option, long constant, long* count) {
  return component_.Call(&CoCSCTable::UploadFile, option, constant, count);
}

HRESULT CoCSCAdapter::DownloadFile(long one, long option, long constant, long* count) {
  return component_.Call(&CoCSCTable::DownloadFile, one, option, constant, count);
}

}  // namespace qv
