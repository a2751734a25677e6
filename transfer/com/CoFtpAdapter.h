#pragma once

#include "CoFtpTable.h"
#include "ComAdapter.h"
#include "qvnetcall/transfer/QvCoFtp.h"

namespace qv {

// The FTP component as the queues know it.
class CoFtpAdapter final : public ComAdapter<IQvCoFtp, CoFtpObject, CoFtpTable> {
 public:
  // Takes over the caller's reference.
  explicit CoFtpAdapter(CoFtpObject* object) : ComAdapter(object) {}

  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password,
                   long* result) override;
  HRESULT UploadFile(long option, long* count) override;
  HRESULT DownloadFile(long one, long option, long* count) override;
  HRESULT AddFtpServer(const char* host, short port, const char* user, const char* password,
                       long* result) override;
  HRESULT SetTransModel1(long value) override;
  HRESULT SetTransModel2(long value) override;
};

}  // namespace qv
