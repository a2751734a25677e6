// Single files of the server's file store, by their path on the server.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/ServerRecords.h"
#include "qvnetcall/framework/String.h"

// All members are static. Each call is one exchange over the socket transport, whatever the kind of
// the server. While the cache state is 2 (the client is offline because the network is bad),
// nothing is sent and every call returns what it returns for success. Any number of threads may
// call at once. The caller keeps owning the texts and records that it passes. Nothing but
// std::bad_alloc is thrown.
//
// Uploads, downloads and deletions truncate server paths to 255 bytes and local paths to 1024. A
// path that is null or empty is left out of the request, which is sent all the same.
class QVNETCALL_API CRvoFile {
 public:
  // Uploads the file at `local_file` to the path `server_file`. If `local_file` is null or empty,
  // the request is sent without a file. Returns one of (names in qv::result)
  // - 0 (kSuccess): the server stored the file;
  // - 1 (kTransferRefused): the server refused;
  // - -1 (kNotDelivered), -2 (kOutcomeUnknown), -3 (kBadReply), or another result of the transport.
  static int UpLoadFileToServer(const char* local_file, const char* server_file);
  // Downloads the file at the path `server_file` to `local_file`. If `local_file` is null or empty,
  // the request is sent without a file. A refused download removes the local file, even one from
  // before the call; a download that breaks off leaves such a file as it was. Returns one of (names
  // in qv::result)
  // - 0 (kSuccess): the file was downloaded;
  // - 1 (kTransferRefused): the server refused;
  // - 2 (kDownloadFailed): the server reported that the download failed; handled like a refusal;
  // - -1 (kNotDelivered), -2 (kOutcomeUnknown), -3 (kBadReply), or another result of the transport.
  static int DownLoadServerFile(const char* local_file, const char* server_file);
  // Deletes the file at the path `server_file`. Returns one of (names in qv::result)
  // - 0 (kSuccess): the server deleted the file;
  // - 1 (kTransferRefused): the server refused;
  // - -1 (kNotDelivered), -2 (kOutcomeUnknown), -3 (kBadReply), or another result of the transport.
  static int DeleteServerFile(const char* server_file);

  // Fills `info`, which must not be null, with the server's record of a file. Returns 1, or 0 if
  // there is no such file or the request was not delivered. `info` is unchanged after 0, after the
  // 1 that is returned while the network is bad, and if the record did not arrive whole.
  static int GetFileInfor(CString server_file, CZelkorSvrFileInfo* info);
  // Copies a file on the server. Returns 1, or 0 if the server did not copy it or the request was
  // not delivered.
  static int CopyOneFile(CString source_file, CString target_file);
  // Renames a file on the server. Returns 1, or 0 if the server did not rename it or the request
  // was not delivered.
  static int RenOneFile(CString old_file, CString new_file);
};
