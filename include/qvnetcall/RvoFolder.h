// Folders of the server's file store and what is in them.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/ServerRecords.h"
#include "qvnetcall/framework/String.h"

// As CRvoFile, but for what they give offline. Arrays are the caller's, who frees them with
// delete[]; their records are zero when the server sent none that fit, and more than 64 MiB of them
// is memory that cannot be had. What `flag` means is the server's; it is sent as whether it is
// zero.
class QVNETCALL_API CRvoFolder {
 public:
  // The files of a folder that match a pattern: an array of `count` records. Null, and `count` 0,
  // when there are none or nothing was delivered; null with `count` set without memory for them.
  // Offline, null and `count` as it was.
  static CZelkorSvrFileInfo* GetMatchFilesInFolder(CString folder, CString pattern, int& count,
                                                   int flag);
  // The same for the pattern "*.*".
  static CZelkorSvrFileInfo* GetFilesInFolder(CString folder, int& count, int flag);
  // The folders in a folder, likewise; but `count` is only written when there are any.
  static CZelkorSvrFolderInfo* GetChildFolderInfo(int& count, CString folder);

  // 1, or 0. Offline, 1.
  static int NewOneFolder(CString folder);
  static int DelOneFolder(CString folder);
  static int RenOneFolder(CString old_folder, CString new_folder);
};
