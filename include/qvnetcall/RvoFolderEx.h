// Listings of large folders, a page at a time.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/QvRvoBuf.h"
#include "qvnetcall/framework/String.h"

// As CRvoFile, but for what they give offline.
class QVNETCALL_API CRvoFolderEx {
 public:
  // Lists the files of a folder that match a pattern, from the index `from` up to `to`, or to the
  // end with -1, into `buffer`, which is not null; `count` becomes the server's count. What
  // `option`, `flag` and the bytes mean is the server's. 1 when the buffer was filled, with zeros
  // when the listing did not come whole; 0 otherwise, and then `count` may be set and the buffer be
  // empty; with nothing sent for a negative `option` or `from`, or a `to` below `from` that is not
  // -1. Offline, 0 and `count` as it was.
  static int GetMatchFilesInFolderEx(CString folder, CString pattern, int& count, int flag,
                                     int option, int from, int to, CQvRvoBuf* buffer);
  // The same for the pattern "*.*".
  static int GetFilesInFolderEx(CString folder, int& count, int flag, int option, int from, int to,
                                CQvRvoBuf* buffer);
};
