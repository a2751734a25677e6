// The process's one connection to the platform's server, and the switches around it.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/QvNetExeInfo.h"
#include "qvnetcall/ServerRecords.h"
#include "qvnetcall/framework/String.h"

// All members are static over module-wide state that has no locks: SetConinfo and the switches are
// set-up, to be called while no other call runs. The calls that talk to the server may run on
// several threads at once unless said otherwise. Texts stay their caller's. Nothing throws but
// std::bad_alloc.
class QVNETCALL_API CRvoServer {
 public:
  // Starts both transports; once, before any other call. FinitNet, after the last call, stops them
  // and closes every local database.
  static void InitNet();
  static void FinitNet();

  // Sets the server that every later call uses. Returns 1.
  static int SetConinfo(const char* server, long port);

  // The kind of the given server: "TCP_IP" or "WEB_IIS", or what "ServerType" in section "Basic" of
  // "QvNetClient.ini" in the library's folder says; when it says nothing, the server is probed.
  // Kept for the last name and port. Returns 1.
  static int GetServerType(CString& type, CString server, unsigned long port);
  // Has GetServerType answer `type` for that server, in place of what it kept before: for a host
  // that knows, so that neither is the configuration read nor the server probed. Set-up, like
  // SetConinfo; an addition to what the platform's hosts know. It holds until the kind of
  // another server is asked for, or an empty type given. Returns 1.
  static int SetServerType(CString type, CString server, unsigned long port);
  // 1 when the given server answers over the socket transport, else 0. Meanwhile the transport's
  // parameter "dispmsg" is "0", so that nothing is shown to the user: not for two threads at once,
  // and neither is a GetServerType that probes.
  static int CheckServerLink(CString server, unsigned long port);

  // Sets or reads a parameter of the socket transport. 1, or 0 when the transport does not know it
  // or refuses the value.
  static int SetNetClientPara(CString name, CString value);
  static int GetNetClientPara(CString name, CString& value);
  // 1 while the socket transport holds the network for bad, else 0. With `n` 0 it may probe, with 1
  // it only reports.
  static int GetIsNetworkBad(int n);
  // The HTTP transport's login token, copied to a buffer of the caller's that is large enough. 1,
  // or 0 without one.
  static int GetWebLoginToken(char* token);

  // What the server says about the client program; `info` stays the caller's and is not null. Its
  // server and port are set in any case; texts that did not come are empty. 1, or 0 when the server
  // has nothing to say or cannot be reached.
  static int GetQvNetExeInfo(CQvNetExeInfo* info);
  // The sub-stores of that name: an array of `count` records that the caller frees with delete[].
  // Null, and `count` as it was, when there are none or the server cannot be reached; null with
  // `count` set without memory for them, which more than 64 MiB counts as. The records are zero
  // when the server sent none that fit.
  static CZelkorSvrSubStoreInfo* GetSubStoreInfo(int& count, CString name);
  // Adds a line to the server's log; `kind` is the server's. Texts of 10239 bytes and more are cut
  // to that length, and not in the middle of a GBK character. 1, or 0; always 0, with
  // nothing sent, when the server is a web server.
  static int SendSvrLogInfo(int kind, CString text);
  // "a_n:b".
  static CString QvURL(CString a, int n, CString b);

  // The connection text that the server has for a database; empty when it has none or cannot be
  // reached.
  static CString GetDBConnString(CString database);
  // Opens a local database with an ODBC connection text ("Driver=...;Database=..."), under a name
  // of which every byte counts. 1, or 0 when it does not open; a connection that has the name
  // already goes when the new one stands, and stays when it does not. Waits for the database, 15
  // seconds at most where the driver can tell the time.
  static int OpenLocalDB(CString database, CString connection);
  // Closes a local database. 1, or 0 when it is not open. Waits for nobody: the connection goes
  // when the calls of other threads that work on it are done.
  static int CloseLocalDB(CString database);
  // Why the last call of this thread on a local database failed, for a log: the database's name,
  // and state and text of everything that its driver said. It may quote the statement. An addition
  // to what the platform's hosts know. 1, or 0 and an empty text when there is nothing to say.
  static int GetLocalDBError(CString& text);
  // Non-zero makes the database calls work on a local database instead of the server, batches
  // apart. Calls on different databases run side by side, those on one take turns. Returns 1.
  static int UseLocalDB(int on);
  // Non-zero (as at the start) leaves opening and closing the local database to the host. With 0
  // every call asks the server for the connection text, opens, works and closes, so that only one
  // thread can use a database. Returns 1.
  static int CareOpenDBConn(int on);

  // Goes online (0), offline by choice (1) or offline because the network is bad (2). 1; 0 for any
  // other state and, with nothing changed, when the server is a web server.
  static int SetCacheState(int state);
  // The state above, brought up to date with the socket transport's view of the network, which `n`
  // is passed to, unless the host chose to be offline. 0 when the server is a web server.
  static int GetCacheState(int n);
  // The folder that query answers are kept in; it is made when it is not there. Until it is set
  // nothing is kept; an empty or null path switches the cache off again and gives 1. 1, or 0 when
  // the folder cannot be used.
  static int SetCachePath(const char* path);
  // Forgets every kept answer. 1, or 0 when that fails.
  static int ClearCurCache();
};
