// Moving files between this machine and a file server, in queues.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"
#include "qvnetcall/framework/StringArray.h"

class IQvCoFtp;

// Holds the component that does the work. The component is created when it is first needed and ends
// with this object. All members must be called on the thread that made the object.
class QVNETCALL_API CRvoFtpClient {
 public:
  // Enters the single-threaded apartment on systems that have apartments.
  CRvoFtpClient();
  ~CRvoFtpClient();
  CRvoFtpClient(const CRvoFtpClient&) = delete;
  CRvoFtpClient& operator=(const CRvoFtpClient&) = delete;

  // Returns the component, which this object keeps owning, or null if it cannot be created. After a
  // failure the next call tries again.
  IQvCoFtp* Get();

 private:
  IQvCoFtp* component_ = nullptr;
};

// One queue: the pairs of paths of one kind of transfer. All members must be called on the thread
// that made the owner.
class QVNETCALL_API CRvoFtpFiles {
 public:
  // `owner` stays the caller's and must outlive this object.
  explicit CRvoFtpFiles(CRvoFtpClient* owner);

  // Appends a pair. If the queue is marked as completed, it is emptied first.
  void Add(const CString& first, const CString& second);
  // Removes all pairs and the mark.
  void Empty();
  // Marks the queue as completed: its pairs are kept, and the next Add starts a new queue.
  void SetDone() { done_ = 1; }
  // Returns the report of a run in which `count` files succeeded; empty if there is nothing to
  // report. `kind`, which names the queue in the text, is 0 for uploads, 1 for downloads and 2 for
  // copies.
  CString GetFailInfo(int kind, long count);

 private:
  CRvoFtpClient* owner_;
  CStringArray first_;
  CStringArray second_;
  int done_ = 0;
};

// One connection to a file server and three queues: uploads, downloads, and copies on the server.
// The component defines which path of a pair is the local one and what `option` and the modes mean;
// docs/transfer-components.md describes the component that is built here.
//
// All members of an object must be called on the thread that made it. Unless a comment says
// otherwise, a call returns the component's result: 0 (qv::result::kSuccess) for success, any other
// value as the component defines it, or -100 (kNoComponent) if the component cannot be created. If
// the component fails the call as such, the call throws _com_error (qvnetcall/transfer/ComError.h);
// then a pair is not queued, and a run reports nothing. If memory runs out, a call throws
// std::bad_alloc. Failures are reported to the server's log (CRvoServer::SendSvrLogInfo, kind 3),
// never with a password.
class QVNETCALL_API CRvoFtp {
 public:
  CRvoFtp();
  ~CRvoFtp();
  CRvoFtp(const CRvoFtp&) = delete;
  CRvoFtp& operator=(const CRvoFtp&) = delete;

  // Logs in. Clears the queue of uploads, even if the call fails, and leaves the others as they
  // are. Pass a `port` above 32767 as static_cast<short>(port). Returns the component's result.
  long FtpLogin(CString host, CString user, CString password, short port);
  // Logs out. Clears the queue of uploads, even if the call fails, and leaves the others as they
  // are. Returns the component's result.
  long FtpLogout();
  // Names a further server; only the low 16 bits of `port` are used. Clears the queue of uploads,
  // even if the call fails, and leaves the others as they are. Returns the component's result.
  long AddFtpServer(CString host, long port, CString user, CString password);

  // Hand a pair to the component and append it to the queue, which starts anew if its last run
  // succeeded. The pair is queued whatever the result, which says how the component took it.
  long AddUploadFile(CString first, CString second);
  long AddDownloadFile(CString first, CString second);
  long AddCopyServerFile(CString first, CString second);

  // Run a queue and set `count` to the number of files that succeeded. Return the component's
  // result. A queue whose run failed is kept: the next run covers all of it and what was added
  // meanwhile. Files that failed are reported to the server's log, in one text.
  long UploadFile(long option, long& count);
  long DownloadFile(long option, long& count);
  long CopyServerile(long option, long& count);

  // Add a pair to a queue and run that queue with everything in it. Return the result of the run;
  // that of adding is ignored.
  long UploadOneFile(CString first, CString second, long option);
  long DownloadOneFile(CString first, CString second, long option);

  // Deletes a file on the server. Returns the component's result; any but 0 is logged.
  long DeleteServerFile(CString path);
  // Deletes a folder on the server with everything in it. Returns the component's result; any but 0
  // is logged.
  long DeleteServerPath(CString path);
  // Renames a file on the server. Returns the component's result; any but 0 is logged.
  long RenameServerFile(CString oldPath, CString newPath);
  // Returns 1 (kFileSucceeded) if the file succeeded in the last run; any other result of the
  // component means that it did not. Any result but 0 is logged, even 1.
  long IsOperatorFileSuc(CString path);

  // Sets two modes of the component, each to 1 if the argument is 1 and otherwise to 0. Returns the
  // result of setting the second mode, which is 0 or above, or -100 (kNoComponent).
  virtual long SetFtpTransModel(int mode1, int mode2);

  // Returns the report that the last run of a queue sent, or would have sent; empty if there was
  // nothing to report. `kind` is 0 for uploads, 1 for downloads, 2 for copies; for any other the
  // report is empty. `count` is what the run set. Asks the component about each file anew and logs
  // nothing. Not part of the platform's interface: an extension of this library.
  CString GetFailInfo(int kind, long count);

 private:
  CRvoFtpFiles uploads_;
  CRvoFtpFiles downloads_;
  CRvoFtpFiles copies_;
  CRvoFtpClient client_;
};
