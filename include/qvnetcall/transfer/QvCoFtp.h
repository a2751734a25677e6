// What CRvoFtp asks of the component that moves the files. Off Windows the component is a library,
// libQvCoFtp.so, beside the host's program. A library of that name that offers the function below
// replaces it.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/transfer/ComError.h"

// One connection and its queues. Every call is made on the thread that created the object. No call
// may throw.
//
// Texts end with a NUL, are in the platform's code page, stay the caller's and are never null.
// Pointers to results and counts are never null. A negative HRESULT means that the call as such
// failed; the host then gets a _com_error, and `result` is ignored. Otherwise `result` is 0 for
// success or a code that the component defines, unless a comment says otherwise. A `port` above
// 32767 arrives as the negative number with the same 16 bits.
//
// The component defines which of `first` and `second` is the local path, and what `option` and the
// modes mean.
class IQvCoFtp {
 public:
  // Logs in to a server.
  virtual HRESULT FtpLogin(const char* host, short port, const char* user, const char* password,
                           long* result) = 0;
  // Adds a pair of paths to the queue of uploads. GetLastResult tells how it went.
  virtual HRESULT AddUploadFile(const char* first, const char* second) = 0;
  // Runs the queue of uploads and sets `count` to the number of files that succeeded. GetLastResult
  // tells how it went.
  virtual HRESULT UploadFile(long option, long* count) = 0;
  // Adds a pair of paths to the queue of downloads. GetLastResult tells how it went.
  virtual HRESULT AddDownloadFile(const char* first, const char* second) = 0;
  // Runs the queue of downloads and sets `count` to the number of files that succeeded; `one` is
  // always 1. GetLastResult tells how it went.
  virtual HRESULT DownloadFile(long one, long option, long* count) = 0;
  // Renames a file on the server.
  virtual HRESULT RenameServerFile(const char* old_path, const char* new_path, long* result) = 0;
  // Logs out.
  virtual HRESULT FtpLogout(long* result) = 0;
  // Deletes a file on the server.
  virtual HRESULT DeleteServerFile(const char* path, long* result) = 0;
  // Deletes a folder on the server, with everything in it.
  virtual HRESULT DeleteServerPath(const char* path, long* result) = 0;
  // Sets `result` to 1 if the file that was added with `path` as its first path succeeded in the
  // last run, else to another value.
  virtual HRESULT IsOperatorFileSuc(const char* path, long* result) = 0;
  // Names a further server.
  virtual HRESULT AddFtpServer(const char* host, short port, const char* user, const char* password,
                               long* result) = 0;
  // Adds a pair of paths to the queue of copies on the server. GetLastResult tells how it went.
  virtual HRESULT AddCopyServerFile(const char* first, const char* second) = 0;
  // Runs the queue of copies and sets `count` to the number of files that succeeded. GetLastResult
  // tells how it went.
  virtual HRESULT CopyServerFile(long option, long* count) = 0;
  // Sets `result` to how the last add or run went.
  virtual HRESULT GetLastResult(long* result) = 0;
  // Set a mode; `value` is 0 or 1.
  virtual HRESULT SetTransModel1(long value) = 0;
  virtual HRESULT SetTransModel2(long value) = 0;

  // Destroys the object; no call may follow.
  virtual void Release() = 0;

 protected:
  ~IQvCoFtp() = default;
};

// The component's library offers this function. Returns a new object, which the caller ends with
// Release, or null if none can be created. Must not throw.
extern "C" QVNETCALL_API IQvCoFtp* QvCoFtpCreate();
