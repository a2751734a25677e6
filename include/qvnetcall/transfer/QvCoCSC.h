// What CRvoCloudStorage asks of the component that moves the files. Off Windows the component is a
// library, libQvCoCSC.so, beside the host's program; whoever offers the function below in a library
// of that name replaces it.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/transfer/ComError.h"

// One connection and its queue. Texts, results and threads are as IQvCoFtp has them.
class IQvCoCSC {
 public:
  // What `extra` means is the component's business.
  virtual HRESULT FtpLogin(const char* host, short port, const char* user, const char* password,
                           long extra, long* result) = 0;
  virtual HRESULT FtpLogout(long* result) = 0;
  virtual HRESULT AddUploadFile(const char* first, const char* second) = 0;
  // `constant` is always -1, here and for DownloadFile.
  virtual HRESULT UploadFile(long option, long constant, long* count) = 0;
  virtual HRESULT AddDownloadFile(const char* first, const char* second) = 0;
  // `one` is always 1.
  virtual HRESULT DownloadFile(long one, long option, long constant, long* count) = 0;
  virtual HRESULT RenameServerFile(const char* old_path, const char* new_path, long* result) = 0;
  virtual HRESULT DeleteServerFile(const char* path, long* result) = 0;
  virtual HRESULT DeleteServerPath(const char* path, long* result) = 0;
  virtual HRESULT IsOperatorFileSuc(const char* path, long* result) = 0;
  virtual HRESULT AddCopyServerFile(const char* first, const char* second) = 0;
  virtual HRESULT CopyServerFile(long option, long* count) = 0;
  virtual HRESULT GetLastResult(long* result) = 0;

  // Ends the object; nothing may be called on it afterwards.
  virtual void Release() = 0;

 protected:
  ~IQvCoCSC() = default;
};

// The component's library offers this: a new object, which its caller ends with Release, or null
// when there can be none. It must not throw.
extern "C" QVNETCALL_API IQvCoCSC* QvCoCSCCreate();
