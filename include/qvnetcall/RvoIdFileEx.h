// Checksums and places of files that the server keeps under identifiers or inside pack files.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"

// All members are static. Each call is one exchange over the socket transport, whatever the kind of
// the server. Any number of threads may call at once. Nothing but std::bad_alloc is thrown. An
// empty text is left out of the request, which is sent all the same.
//
// Every call returns the server's answer: 1 or more for success, less for failure.
// - On success, `error_text` is unchanged.
// - On failure, `error_text` is the server's text, or unchanged if the server sent none.
// - If the request was not delivered, the call returns 0 and sets `error_text` to "调用函数失败" in
//   the code page of the program (GBK on Chinese Windows, UTF-8 off Windows).
// - While the cache state is 2 (the client is offline because the network is bad), the call sends
//   nothing, returns 0 and changes none of its arguments.
class QVNETCALL_API CRvoIdFileEx {
 public:
  // Reads the server's checksum of a file into `crc`, which is emptied first, and the number that
  // comes with it into `value`, which changes only on success. The server defines the meaning of
  // that number.
  static int GetIDFileCRC(CString file_name, int file_id, CString& crc, int& value,
                          CString& error_text);
  // Reads the server's checksum of a file inside a pack file into `crc`, which is emptied first,
  // and the number that comes with it into `value`, which changes only on success. The server
  // defines the meaning of that number.
  static int GetPackFileCRC(CString pack_file, CString file_name, int file_id, CString& crc,
                            int& value, CString& error_text);
  // Reads the path at which the server keeps a file into `save_path`, which is emptied first.
  static int GetIDFileSavePath(CString file_name, int file_id, CString& save_path,
                               CString& error_text);
  // Copies a file out of a pack file. The five inputs are sent in this order; the server defines
  // their meaning.
  static int CopyPackFileToIdFile(CString pack_file, CString packed_name, int source_id,
                                  CString target_name, int target_id, CString& error_text);
};
