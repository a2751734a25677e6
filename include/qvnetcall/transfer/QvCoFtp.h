// What CRvoFtp asks of the component that moves the files. Off Windows the component is a library,
// libQvCoFtp.so, beside the host's program; whoever offers the function below in a library of that
// name replaces it.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/transfer/ComError.h"

// One connection and its queue. Every call is made on the thread that made the object. Texts end
// with a NUL, are in the platform's code page, stay the caller's and are never null. A negative
// HRESULT means that the call failed as such, and reaches the host as _com_error; `result`, which
// is never null, counts only when it is not. In `result`, 0 is success and any other value a code
// of the component's own, unless a call says otherwise. A `port` above 32767 comes as the negative
// number with the same 16 bits. No call may throw.
//
// Which of `first` and `second` is the local path, and what `option` and the modes mean, is the
// component's business.
class IQvCoFtp {
 public:
  virtual HRESULT FtpLogin(const char* host, short port, const char* user, const char* password,
                           long* result) = 0;
  virtual HRESULT AddUploadFile(const char* first, const char* second) = 0;
  // Carries out the queue; `count` is how many files succeeded. GetLastResult says how it went.
  virtual HRESULT UploadFile(long option, long* count) = 0;
  virtual HRESULT AddDownloadFile(const char* first, const char* second) = 0;
  // `one` is always 1.
  virtual HRESULT DownloadFile(long one, long option, long* count) = 0;
  virtual HRESULT RenameServerFile(const char* old_path, const char* new_path, long* result) = 0;
  virtual HRESULT FtpLogout(long* result) = 0;
  virtual HRESULT DeleteServerFile(const char* path, long* result) = 0;
  virtual HRESULT DeleteServerPath(const char* path, long* result) = 0;
  // `result` is 1 for a file of the last run, named as `first` when it was added, that succeeded.
  virtual HRESULT IsOperatorFileSuc(const char* path, long* result) = 0;
  virtual HRESULT AddFtpServer(const char* host, short port, const char* user, const char* password,
                               long* result) = 0;
  virtual HRESULT AddCopyServerFile(const char* first, const char* second) = 0;
  virtual HRESULT CopyServerFile(long option, long* count) = 0;
  // How the last add or run went.
  virtual HRESULT GetLastResult(long* result) = 0;
  // `value` is 0 or 1.
  virtual HRESULT SetTransModel1(long value) = 0;
  virtual HRESULT SetTransModel2(long value) = 0;

  // Ends the object; nothing may be called on it afterwards.
  virtual void Release() = 0;

 protected:
  ~IQvCoFtp() = default;
};

// The component's library offers this: a new object, which its caller ends with Release, or null
// when there can be none. It must not throw.
extern "C" QVNETCALL_API IQvCoFtp* QvCoFtpCreate();
