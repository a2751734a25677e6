// Moving files between this machine and a cloud store, in queues.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"
#include "qvnetcall/framework/StringArray.h"

class IQvCoCSC;

// Holds the component that does the work. It is made together with this object or never.
class QVNETCALL_API CRvoCSCClient {
 public:
  // Enters the single-threaded apartment on systems that have one.
  CRvoCSCClient();
  // Leaves the apartment first and then ends the component.
  ~CRvoCSCClient();
  CRvoCSCClient(const CRvoCSCClient&) = delete;
  CRvoCSCClient& operator=(const CRvoCSCClient&) = delete;

  // The component, which stays this object's; null when there is none.
  IQvCoCSC* Get() const { return component_; }

 private:
  IQvCoCSC* component_ = nullptr;
};

// One queue: the pairs of paths of one kind of transfer.
class QVNETCALL_API CRvoCSCFiles {
 public:
  // `owner` stays the caller's and must outlive this object.
  explicit CRvoCSCFiles(CRvoCSCClient* owner);
  virtual ~CRvoCSCFiles();
  CRvoCSCFiles(const CRvoCSCFiles&) = delete;
  CRvoCSCFiles& operator=(const CRvoCSCFiles&) = delete;

  // As CRvoFtpFiles has them.
  void Add(const CString& first, const CString& second);
  void Empty();
  void SetDone() { done_ = 1; }
  CString GetFailInfo(int kind, long count);

 private:
  CStringArray first_;
  CStringArray second_;
  int done_ = 0;
  CRvoCSCClient* owner_;
};

// One connection to a cloud store and three queues. What is not said here is as CRvoFtp has it:
// threads, results, exceptions, queues, reports. A copy shares the connection and the queues of its
// source, and its thread; they end with the last of them. The component is made by the constructor;
// without one, every call gives -100 for the object's life.
class QVNETCALL_API CRvoCloudStorage {
 public:
  CRvoCloudStorage();
  CRvoCloudStorage(const CRvoCloudStorage& source);
  CRvoCloudStorage& operator=(const CRvoCloudStorage& source);
  virtual ~CRvoCloudStorage();

  // Both empty all three queues. What `extra` means is the component's.
  long FtpLogin(CString host, CString user, CString password, short port, int extra);
  long FtpLogout();

  long AddUploadFile(CString first, CString second);
  long AddDownloadFile(CString first, CString second);
  long AddCopyServerFile(CString first, CString second);

  // The reports of uploads and downloads end with the result of the run; that of copies does not,
  // and hosts rely on it.
  long UploadFile(long option, long& count);
  long DownloadFile(long option, long& count);
  long CopyServerile(long option, long& count);

  long UploadOneFile(CString first, CString second, long option);
  long DownloadOneFile(CString first, CString second, long option);

  long DeleteServerFile(CString path);
  long DeleteServerPath(CString path);
  long RenameServerFile(CString oldPath, CString newPath);
  long IsOperatorFileSuc(CString path);

  // An extension, as CRvoFtp has it; without the result of the run.
  CString GetFailInfo(int kind, long count);

 private:
  void EmptyQueues();

  CRvoCSCClient* client_;
  CRvoCSCFiles* uploads_;
  CRvoCSCFiles* downloads_;
  CRvoCSCFiles* copies_;
};
