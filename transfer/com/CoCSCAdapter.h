#pragma once

#include "CoCSCTable.h"
#include "ComAdapter.h"
#include "qvnetcall/transfer/QvCoCSC.h"

namespace qv {

// The cloud storage component as the queues know it.
class CoCSCAdapter final : public ComAdapter<IQvCoCSC, CoCSCObject, CoCSCTable> {
 public:
  // Takes over the caller's reference.
  explicit CoCSCAdapter(CoCSCObject* object) : ComAdapter(object) {}

  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password, long extra,
                   long* result) override;
  HRESULT UploadFile(long option, long constant, long* count) override;
  HRESULT DownloadFile(long one, long option, long constant, long* count) override;
};

}  // namespace qv
