// Groups, users and departments of the directory that the server works on.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/ServerRecords.h"
#include "qvnetcall/framework/String.h"

// All members are static. Each call is one exchange over the socket transport, whatever the kind of
// the server, and is made whether or not the client is offline. Any number of threads may call at
// once. Nothing but std::bad_alloc is thrown. The server defines what the numbers and texts mean.
// An empty text is left out of the request, which is sent all the same.
class QVNETCALL_API CRvoAd {
 public:
  // GetADGroupInfo reads the groups that the server finds for `key`, GetADGroupUserInfo the users
  // of `group`. Each returns an array of `count` records, which the caller owns and frees with
  // delete[]; the records are zero if the reply holds none of the right size. Returns null and sets
  // `count` to 0 if there are none or the request was not delivered. If the array cannot be
  // allocated, or would exceed 64 MiB, returns null although `count` is set.
  static CZelkorSvrADObjInfo* GetADGroupInfo(CString key, int& count);
  static CZelkorSvrADObjInfo* GetADGroupUserInfo(CString group, int& count);
  // Reads all users. Returns an array of `count` records, which the caller owns and frees with
  // delete[]; the records are zero if the reply holds none of the right size. Returns null and
  // leaves `count` unchanged if there are none or the request was not delivered. If the array
  // cannot be allocated, or would exceed 64 MiB, returns null although `count` is set.
  static CZelkorSvrADObjInfo* GetADUserInfo(int& count);

  // Creates a department. Returns the server's answer if it is above 0; otherwise, or if the
  // request was not delivered, returns 0.
  static int CreateADDepart(int value);
  // Creates a group. Returns the server's answer if it is above 0; otherwise, or if the request was
  // not delivered, returns 0.
  static int AddADGroup(CString group, int value1, int value2);
  // Puts users into a group; backslashes in `users` are sent as slashes. Returns the server's
  // answer if it is above 0; otherwise, or if the request was not delivered, returns 0.
  static int AddADGroupUsers(CString group, CString users, int value);
  // Creates a user. `mode` is 0, 1 or 2; with any other value nothing is sent and the result is 0.
  // Returns the server's answer if it is above 0; otherwise, or if the request was not delivered,
  // returns 0.
  static int AddADUser(CString first, CString second, int mode);
};
