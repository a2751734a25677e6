// What CRvoCloudStorage asks of the component that moves the files. Off Windows the component is a
// library, libQvCoCSC.so, beside the host's program. A library of that name that offers the
// function below replaces it.
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
// The component defines which of `first` and `second` is the local path, and what `option` and
// `extra` mean.
class IQvCoCSC {
 public:
  // Logs in to a store.
  virtual HRESULT FtpLogin(const char* host, short port, const char* user, const char* password,
                           long extra, long* result) = 0;
  // Logs out.
  virtual HRESULT FtpLogout(long* result) = 0;
  // Adds a pair of paths to the queue of uploads. GetLastResult tells how it went.
  virtual HRESULT AddUploadFile(const char* first, const char* second) = 0;
  // Runs the queue of uploads and sets `count` to the number of files that succeeded; `constant` is
  // always -1. GetLastResult tells how it went.
  virtual HRESULT UploadFile(long option, long constant, long* count) = 0;
  // Adds a pair of paths to the queue of downloads. GetLastResult tells how it went.
  virtual HRESULT AddDownloadFile(const char* first, const char* second) = 0;
  // Runs the queue of downloads and sets `count` to the number of files that succeeded; `one` is
  // always 1 and `constant` always -1. GetLastResult tells how it went.
  virtual HRESULT DownloadFile(long one, long option, long constant, long* count) = 0;
  // Renames a file in the store.
  virtual HRESULT RenameServerFile(const char* old_path, const char* new_path, long* result) = 0;
  // Deletes a file in the store.
  virtual HRESULT DeleteServerFile(const char* path, long* result) = 0;
  // Deletes a folder in the store, with everything in it.
  virtual HRESULT DeleteServerPath(const char* path, long* result) = 0;
  // Sets `result` to 1 if the file that was added with `path` as its first path succeeded in the
  // last run, else to another value.
  virtual HRESULT IsOperatorFileSuc(const char* path, long* result) = 0;
  // Adds a pair of paths to the queue of copies in the store. GetLastResult tells how it went.
  virtual HRESULT AddCopyServerFile(const char* first, const char* second) = 0;
  // Runs the queue of copies and sets `count` to the number of files that succeeded. GetLastResult
  // tells how it went.
  virtual HRESULT CopyServerFile(long option, long* count) = 0;
  // Sets `result` to how the last add or run went.
  virtual HRESULT GetLastResult(long* result) = 0;

  // Destroys the object; no call may follow.
  virtual void Release() = 0;

 protected:
  ~IQvCoCSC() = default;
};

// The component's library offers this function. Returns a new object, which the caller ends with
// Release, or null if none can be created. Must not throw.
extern "C" QVNETCALL_API IQvCoCSC* QvCoCSCCreate();
