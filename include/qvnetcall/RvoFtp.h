// Moving files between this machine and a file server, in queues.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"
#include "qvnetcall/framework/StringArray.h"

class IQvCoFtp;

// Holds the component that does the work: made when it is first needed, ended with this object.
class QVNETCALL_API CRvoFtpClient {
 public:
  // Enters the single-threaded apartment on systems that have one.
  CRvoFtpClient();
  ~CRvoFtpClient();
  CRvoFtpClient(const CRvoFtpClient&) = delete;
  CRvoFtpClient& operator=(const CRvoFtpClient&) = delete;

  // The component, which stays this object's; null when it cannot be had. Every call tries again.
  IQvCoFtp* Get();

 private:
  IQvCoFtp* component_ = nullptr;
};

// One queue: the pairs of paths of one kind of transfer.
class QVNETCALL_API CRvoFtpFiles {
 public:
  // `owner` stays the caller's and must outlive this object.
  explicit CRvoFtpFiles(CRvoFtpClient* owner);

  // Appends a pair, to an empty queue when the one before was carried out.
  void Add(const CString& first, const CString& second);
  void Empty();
  // Says that a run of the queue succeeded: it is kept until the next pair comes.
  void SetDone() { done_ = 1; }
  // The report of a run, of which `count` files succeeded; empty when there is nothing to report.
  // `kind` is 0 for uploads, 1 for downloads, 2 for copies.
  CString GetFailInfo(int kind, long count);

 private:
  CRvoFtpClient* owner_;
  CStringArray first_;
  CStringArray second_;
  int done_ = 0;
};

// One connection to a file server and three queues: uploads, downloads, copies on the server. Which
// of the two paths of a pair is the local one, and what `option` and the modes mean, is defined by
// the component; docs/transfer-components.md has it for the one that is built here.
//
// All members of an object must be called on the thread that made it. Results are the component's,
// 0 for success, or -100 when there is no component. A call that the component fails as such throws
// _com_error (qvnetcall/transfer/ComError.h): a pair is not queued then, and a run reports nothing.
// Running out of memory throws std::bad_alloc. Failures are reported to the server's log
// (CRvoServer::SendSvrLogInfo, kind 3); no password is.
class QVNETCALL_API CRvoFtp {
 public:
  CRvoFtp();
  ~CRvoFtp();
  CRvoFtp(const CRvoFtp&) = delete;
  CRvoFtp& operator=(const CRvoFtp&) = delete;

  // These three empty the queue of uploads, whatever comes of the call, and leave the others as
  // they are. A `port` above 32767 is the negative number with the same 16 bits.
  long FtpLogin(CString host, CString user, CString password, short port);
  long FtpLogout();
  // The low 16 bits of `port` count.
  long AddFtpServer(CString host, long port, CString user, CString password);

  // Hand a pair to the component and queue it, whatever the result, which says how the component
  // took it. After a run that succeeded, the queue starts anew.
  long AddUploadFile(CString first, CString second);
  long AddDownloadFile(CString first, CString second);
  long AddCopyServerFile(CString first, CString second);

  // Run a queue. `count` is how many files succeeded. A queue whose run failed is kept, and is run
  // again as a whole, with what was added meanwhile. Files that failed are reported in one text.
  long UploadFile(long option, long& count);
  long DownloadFile(long option, long& count);
  long CopyServerile(long option, long& count);

  // Queue a pair and run the queue, with all that stands in it.
  long UploadOneFile(CString first, CString second, long option);
  long DownloadOneFile(CString first, CString second, long option);

  long DeleteServerFile(CString path);
  // Deletes a folder, with what it holds.
  long DeleteServerPath(CString path);
  long RenameServerFile(CString oldPath, CString newPath);
  // 1 for a file of the last run that succeeded. Every result but 0 is logged, 1 as well.
  long IsOperatorFileSuc(CString path);

  // Each mode is set to 1 by 1, and to 0 by any other number. The result is that of the second
  // call at the component, 0 or above, or -100.
  virtual long SetFtpTransModel(int mode1, int mode2);

  // An extension: the report that the last run of a queue sent, or would have sent; empty when
  // there was nothing to report. Asks the component about each file anew and logs nothing. `kind`
  // is 0 for uploads, 1 for downloads, 2 for copies, and empty for any other; `count` is what the
  // run gave.
  CString GetFailInfo(int kind, long count);

 private:
  CRvoFtpFiles uploads_;
  CRvoFtpFiles downloads_;
  CRvoFtpFiles copies_;
  CRvoFtpClient client_;
};
