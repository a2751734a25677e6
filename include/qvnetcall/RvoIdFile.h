// Files that the server keeps under a numeric identifier and a name.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"

// As CRvoFile. Uploads, downloads and deletions carry the name, cut to 251 bytes, beside the
// identifier; with a negative identifier or a null name they go out with neither, and are the
// server's to refuse. The other calls send both as they are, but for empty names.
class QVNETCALL_API CRvoIdFile {
 public:
  // Results as of the calls of the same names in CRvoFile.
  static int UpLoadFileToServerByFileID(const char* local_file, const char* file_name, int file_id);
  static int DownLoadServerFileByFileID(const char* local_file, const char* file_name, int file_id);
  static int DeleteServerFileByFileID(const char* file_name, int file_id);
  // 0 done; else the server's code, or -1 when it gave none; or the transport's result. Offline, 0.
  static int CopyIdFile(int source_id, const char* source_name, int target_id,
                        const char* target_name);
  // 1, or 0 when there is no such file, nothing was delivered, or the client is offline.
  static int IsIdFileExist(const char* file_name, int file_id);

  // The folder that the server keeps an identifier's files in, below its store: "1\23\45\1234567\"
  // for 1234567. Nothing is sent.
  static CString GetIdFilePath(int id);
};
