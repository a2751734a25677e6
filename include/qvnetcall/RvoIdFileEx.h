// Checksums and places of files that the server keeps under identifiers or inside pack files.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"

// As CRvoFile, but for what they give offline. Every call returns the server's answer: 1 or more
// for success. On less, the server's text, when it sent one, is in `error_text`, which success
// leaves alone; when nothing was delivered the result is 0 and the text is "调用函数失败", in the
// code page of the program (GBK on Chinese Windows, UTF-8 off Windows). Offline, 0 and nothing
// changed.
class QVNETCALL_API CRvoIdFileEx {
 public:
  // The server's checksum of a file, and a number that is the server's; `crc` is emptied first.
  static int GetIDFileCRC(CString file_name, int file_id, CString& crc, int& value,
                          CString& error_text);
  // The same for a file inside a pack file.
  static int GetPackFileCRC(CString pack_file, CString file_name, int file_id, CString& crc,
                            int& value, CString& error_text);
  // Where the server keeps a file; `save_path` is emptied first.
  static int GetIDFileSavePath(CString file_name, int file_id, CString& save_path,
                               CString& error_text);
  // Copies a file out of a pack file. The five inputs are sent in this order; their meaning is the
  // server's.
  static int CopyPackFileToIdFile(CString pack_file, CString packed_name, int source_id,
                                  CString target_name, int target_id, CString& error_text);
};
