// Files that the server keeps under a numeric identifier and a name.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"

// All members are static. Each call but GetIdFilePath is one exchange over the socket transport,
// whatever the kind of the server. While the cache state is 2 (the client is offline because the
// network is bad), these calls send nothing and return 0. Any number of threads may call at once.
// The caller keeps owning the texts that it passes. Nothing but std::bad_alloc is thrown.
//
// Uploads, downloads and deletions truncate local paths to 1024 bytes and names to 251. If the
// identifier is negative or the name is null, they send the request with neither, and it is up to
// the server to refuse it. The other calls send identifiers and names unchanged, but leave out a
// name that is null or empty.
class QVNETCALL_API CRvoIdFile {
 public:
  // Uploads the file at `local_file`. If `local_file` is null or empty, the request is sent without
  // a file. Returns one of (names in qv::result)
  // - 0 (kSuccess): the server stored the file;
  // - 1 (kTransferRefused): the server refused;
  // - -1 (kNotDelivered), -2 (kOutcomeUnknown), -3 (kBadReply), or another result of the transport.
  static int UpLoadFileToServerByFileID(const char* local_file, const char* file_name, int file_id);
  // Downloads a file to `local_file`. If `local_file` is null or empty, the request is sent without
  // a file. A refused download removes the local file, even one from before the call; a download
  // that breaks off leaves such a file as it was. Returns one of (names in qv::result)
  // - 0 (kSuccess): the file was downloaded;
  // - 1 (kTransferRefused): the server refused;
  // - 2 (kDownloadFailed): the server reported that the download failed; handled like a refusal;
  // - -1 (kNotDelivered), -2 (kOutcomeUnknown), -3 (kBadReply), or another result of the transport.
  static int DownLoadServerFileByFileID(const char* local_file, const char* file_name, int file_id);
  // Deletes a file. Returns one of (names in qv::result)
  // - 0 (kSuccess): the server deleted the file;
  // - 1 (kTransferRefused): the server refused;
  // - -1 (kNotDelivered), -2 (kOutcomeUnknown), -3 (kBadReply), or another result of the transport.
  static int DeleteServerFileByFileID(const char* file_name, int file_id);

  // Copies a file on the server. Returns one of (names in qv::result)
  // - 0 (kSuccess): the server copied the file;
  // - the server's code if it refused, or -1 (kCopyFailed) if it gave none;
  // - -1 (kNotDelivered), -2 (kOutcomeUnknown), -3 (kBadReply), or another result of the transport.
  static int CopyIdFile(int source_id, const char* source_name, int target_id,
                        const char* target_name);
  // Returns 1 if there is such a file, or 0 if there is none or the transport failed.
  static int IsIdFileExist(const char* file_name, int file_id);

  // Returns the folder below the server's store in which it keeps the files of an identifier:
  // "1\23\45\1234567\" for 1234567. Nothing is sent.
  static CString GetIdFilePath(int id);
};
