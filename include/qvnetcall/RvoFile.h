// Single files of the server's file store, by their path on the server.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/ServerRecords.h"
#include "qvnetcall/framework/String.h"

// All members are static, one exchange each over the socket transport, whatever the kind of the
// server. While the client is offline because the network is bad (cache state 2) nothing is sent
// and every call gives its success value. Any number of threads; texts and records stay their
// caller's. Nothing throws but std::bad_alloc.
class QVNETCALL_API CRvoFile {
 public:
  // Of these three the paths on the server are cut to 255 bytes, local ones to 1024. A null or
  // empty local path sends the request without a file. 0 done, 1 refused; any other value is the
  // transport's (NetworkTransMsg).
  static int UpLoadFileToServer(const char* local_file, const char* server_file);
  // Also 2 when the server says that it failed. A refused download removes the local file; a
  // download that breaks off leaves a file that had the name before as it was.
  static int DownLoadServerFile(const char* local_file, const char* server_file);
  static int DeleteServerFile(const char* server_file);

  // Fills `info`, which is not null. 1, or 0 when there is no such file or nothing was delivered.
  // `info` is unchanged after 0, after the 1 of a client that is offline, and when the record did
  // not come whole.
  static int GetFileInfor(CString server_file, CZelkorSvrFileInfo* info);
  // 1, or 0.
  static int CopyOneFile(CString source_file, CString target_file);
  static int RenOneFile(CString old_file, CString new_file);
};
