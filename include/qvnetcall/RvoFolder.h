// Folders of the server's file store and what is in them.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/ServerRecords.h"
#include "qvnetcall/framework/String.h"

// All members are static. Each call is one exchange over the socket transport, whatever the kind of
// the server. While the cache state is 2 (the client is offline because the network is bad),
// nothing is sent; each call says what it returns then. Any number of threads may call at once.
// Nothing but std::bad_alloc is thrown. An empty text is left out of the request, which is sent all
// the same.
//
// The caller owns the arrays that are returned and frees them with delete[]. Their records are zero
// if the reply holds none of the right size. A reply that claims more than 64 MiB of records is
// treated as out of memory.
class QVNETCALL_API CRvoFolder {
 public:
  // List the files of a folder that match `pattern`, which for GetFilesInFolder is "*.*". `flag` is
  // sent as 0 or 1; the server defines its meaning. Return an array of `count` records. Return null
  // and set `count` to 0 if there are none or the request was not delivered. If memory runs out,
  // return null although `count` is set. While the network is bad, return null and leave `count`
  // unchanged.
  static CZelkorSvrFileInfo* GetMatchFilesInFolder(CString folder, CString pattern, int& count,
                                                   int flag);
  static CZelkorSvrFileInfo* GetFilesInFolder(CString folder, int& count, int flag);
  // Lists the folders in a folder. Returns an array of `count` records. Returns null and leaves
  // `count` unchanged if there are none, if the request was not delivered, or while the network is
  // bad. If memory runs out, returns null although `count` is set.
  static CZelkorSvrFolderInfo* GetChildFolderInfo(int& count, CString folder);

  // Create, delete and rename a folder. Return 1 if the server did it, or while the network is bad.
  // Return 0 if the server did not do it or the request was not delivered.
  static int NewOneFolder(CString folder);
  static int DelOneFolder(CString folder);
  static int RenOneFolder(CString old_folder, CString new_folder);
};
