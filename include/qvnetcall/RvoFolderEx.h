// Listings of large folders, a page at a time.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/QvRvoBuf.h"
#include "qvnetcall/framework/String.h"

// All members are static. Each call is one exchange over the socket transport, whatever the kind of
// the server. Any number of threads may call at once, each with a buffer of its own. Nothing but
// std::bad_alloc is thrown. An empty text is left out of the request, which is sent all the same.
class QVNETCALL_API CRvoFolderEx {
 public:
  // List one page of the files of a folder that match `pattern`, which for GetFilesInFolderEx is
  // "*.*": from the index `from` up to `to`, or to the end if `to` is -1. The listing goes to
  // `buffer`, which must not be null and stays the caller's; the server's count goes to `count`.
  // `flag` is sent as 0 or 1. The server defines the meaning of `flag`, `option` and the listing's
  // bytes.
  //
  // Return 1 if `buffer` was filled; it is filled with zeros if the listing did not arrive whole.
  // Return 0
  // - if `option` or `from` is negative, or `to` is below `from` and not -1: nothing is sent, and
  //   `count` is 0;
  // - while the cache state is 2 (the client is offline because the network is bad): nothing is
  //   sent, and `count` is unchanged;
  // - if the request was not delivered or there are no such files: `count` is 0;
  // - if there are files but no listing came, or memory for it cannot be allocated, or it would
  //   exceed 64 MiB: `count` is set, and in the last two cases `buffer` is empty.
  static int GetMatchFilesInFolderEx(CString folder, CString pattern, int& count, int flag,
                                     int option, int from, int to, CQvRvoBuf* buffer);
  static int GetFilesInFolderEx(CString folder, int& count, int flag, int option, int from, int to,
                                CQvRvoBuf* buffer);
};
