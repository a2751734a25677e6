// Groups, users and departments of the directory that the server works on.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/ServerRecords.h"
#include "qvnetcall/framework/String.h"

// All members are static, one exchange each over the socket transport, whatever the kind of the
// server; they know no offline state. Any number of threads; nothing throws but std::bad_alloc.
// Arrays are the caller's, who frees them with delete[]; their records are zero when the server
// sent none that fit. What the numbers and texts mean is the server's.
class QVNETCALL_API CRvoAd {
 public:
  // An array of `count` records; null, and `count` 0, when there are none or nothing was delivered;
  // null with `count` set without memory for them.
  static CZelkorSvrADObjInfo* GetADGroupInfo(CString key, int& count);
  static CZelkorSvrADObjInfo* GetADGroupUserInfo(CString group, int& count);
  // The same, but `count` is only written when there are any.
  static CZelkorSvrADObjInfo* GetADUserInfo(int& count);

  // The server's answer when it is above zero, else 0.
  static int CreateADDepart(int value);
  static int AddADGroup(CString group, int value1, int value2);
  // Backslashes in `users` are sent as slashes.
  static int AddADGroupUsers(CString group, CString users, int value);
  // `mode` is 0 to 2; for any other nothing is sent.
  static int AddADUser(CString first, CString second, int mode);
};
