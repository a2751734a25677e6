// The process's one connection to the platform's server, and the switches around it.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/QvNetExeInfo.h"
#include "qvnetcall/ServerRecords.h"
#include "qvnetcall/framework/String.h"

// All members are static and work on module-wide state that has no locks. SetConinfo and the
// switches are set-up: call them while no other call runs. The calls that talk to the server may
// run on several threads at once unless their comment says otherwise. The caller keeps owning the
// texts that it passes. Nothing but std::bad_alloc is thrown. An empty text is left out of a
// request, which is sent all the same.
class QVNETCALL_API CRvoServer {
 public:
  // Starts both transports. Call it once, before any other call.
  static void InitNet();
  // Stops both transports, closes every local database, and ends the threads that read large
  // answers (SetReaderThreads). Call it once, after the last call.
  static void FinitNet();

  // Sets the name and the port of the server that every later call uses; a null name counts as
  // empty, a negative port as 0. Set-up. Returns 1.
  static int SetConinfo(const char* server, long port);

  // Stores in `type` the kind of the given server: the value of "ServerType" in section "Basic" of
  // "QvNetClient.ini" in the library's folder or, if there is none, what a probe finds: "TCP_IP" if
  // CheckServerLink reaches the server, else "WEB_IIS" (names in qv::server_type). The answer for
  // the last name and port is remembered, so that the file is not read and the server not probed
  // again. Only one thread at a time may make a call that probes. Returns 1.
  static int GetServerType(CString& type, CString server, unsigned long port);
  // Makes GetServerType answer `type` for the given server, in place of what it remembered. A host
  // that knows the kind of its server thus saves reading the configuration and probing. This holds
  // until the kind of another server is asked for or an empty `type` is given. Set-up. Not part of
  // the platform's interface: an extension of this library. Returns 1.
  static int SetServerType(CString type, CString server, unsigned long port);
  // Returns 1 if the given server answers over the socket transport, else 0. During the call the
  // transport's parameter "dispmsg" is "0", so that the user is shown no messages. Only one thread
  // at a time may call this, because that parameter is shared.
  static int CheckServerLink(CString server, unsigned long port);

  // Sets a parameter of the socket transport, on all threads, for the calls that start afterwards.
  // Any thread may call. Returns 1, or 0 if the transport does not know the parameter or refuses
  // the value. Another transport may have other parameters; those of the transport that is built
  // here are:
  //
  //   name                values
  //   dispmsg             up to 4096 bytes, "1" at first: whether messages may be shown to the
  //                       user; kept for programs with a user interface, the transport shows none
  //   token               up to 4096 bytes, empty at first: the access token that is sent with
  //                       every request
  //   connect_timeout_ms  1 to 3600000, 5000 at first: milliseconds for connecting
  //   io_timeout_ms       1 to 3600000, 30000 at first: milliseconds without progress
  //   retry_after_ms      1 to 3600000, 3000 at first: the least number of milliseconds between two
  //                       probes of a bad network
  //   tls                 only "0": this transport does not encrypt
  //   ca_file             only empty: this transport does not encrypt
  static int SetNetClientPara(CString name, CString value);
  // Reads a parameter of the socket transport into `value`. Any thread may call. Returns 1. Returns
  // 0 and leaves `value` unchanged if the transport does not know the parameter.
  static int GetNetClientPara(CString name, CString& value);
  // Returns 1 while the socket transport considers the network bad, else 0. If `n` is 0, the
  // transport may probe the network first (the one that is built here then blocks for up to a
  // second); if `n` is 1, it only reports. Any thread may call.
  static int GetIsNetworkBad(int n);
  // Copies the HTTP transport's login token, with a NUL at its end, to `token`, a buffer of the
  // caller that is large enough for it (256 bytes for the transport that is built here). Any thread
  // may call. Returns 1, or 0 if there is no token; `token` is an empty text then.
  static int GetWebLoginToken(char* token);

  // Fills `info`, which must not be null and stays the caller's, with what the server says about
  // the client program. Returns 1; texts that the server did not send are empty. Returns 0 if the
  // server has nothing to say or cannot be reached; then only m_server and m_port are set.
  static int GetQvNetExeInfo(CQvNetExeInfo* info);
  // Reads the sub-stores of the given name. Returns an array of `count` records, which the caller
  // owns and frees with delete[]; the records are zero if the reply holds none of the right size.
  // Returns null and leaves `count` unchanged if there are none or the server cannot be reached. If
  // the array cannot be allocated, or would exceed 64 MiB, returns null although `count` is set.
  static CZelkorSvrSubStoreInfo* GetSubStoreInfo(int& count, CString name);
  // Appends a line to the server's log; the server defines the meaning of `kind`. A text of 10239
  // bytes or more is truncated to 10239 bytes, or to one less where that would split a GBK
  // character. Returns 1, or 0 if the server did not take the line or cannot be reached. If the
  // server is a web server, nothing is sent and the result is 0.
  static int SendSvrLogInfo(int kind, CString text);
  // Returns the text "a_n:b" of the three arguments. Any thread may call.
  static CString QvURL(CString a, int n, CString b);

  // Returns the connection text that the server has for a database; empty if it has none or cannot
  // be reached.
  static CString GetDBConnString(CString database);
  // Opens a connection to a local database with an ODBC connection text ("Driver=...;Database=...")
  // and registers it under the name `database`, in which every byte counts. Returns 1 and closes
  // the connection that had the name before. Returns 0 and leaves that connection in place if the
  // new one cannot be opened. Blocks until the database answers: at most 15 seconds, if the driver
  // supports a time limit. Any thread may call, also while others use the connection that is
  // replaced: they go on with it.
  static int OpenLocalDB(CString database, CString connection);
  // Closes the connection to a local database. Returns 1, or 0 if there is none of that name. Any
  // thread may call. Does not block: the connection ends when the calls of other threads that work
  // on it have returned.
  static int CloseLocalDB(CString database);
  // Stores in `text`, for a log, why this thread's last call on a local database failed: the
  // database's name, and the state and the text of every message of its driver, which may quote the
  // statement. Returns 1, or 0 and an empty text if there is nothing to say. Any thread may call;
  // each has its own text. Not part of the platform's interface: an extension of this library.
  static int GetLocalDBError(CString& text);
  // Returns the class of the reason (names in qv::error) for which this thread's last call failed,
  // or was refused by the server; 0 (kNone) if it did neither. Calls on the server, on local
  // databases and on recordset files set it, CRvoFtp's and CRvoCloudStorage's do not; each replaces
  // it, and so does success. A call that is skipped while the network is bad has the class
  // kOffline, whatever it returns. Reading it, and calls that only look at or set the state of this
  // library, leave it as it is. Not part of the platform's interface: an extension of this library.
  static int GetLastErrorClass();
  // Returns the reason itself, for users and logs: in the code page of the program, at most 1000
  // bytes, without control characters; empty if there is none. It may quote the statement. A server
  // that knows no reasons, and a transport that does not pass them on, leave only what this library
  // can say. Not part of the platform's interface: an extension of this library.
  static CString GetLastErrorText();
  // If `on` is not 0, the database calls work on a local database instead of the server; batches
  // are the exception (CRvoDatabase::ExecuteMultiSQL). Calls on different databases run in
  // parallel; calls on the same one wait for each other. Set-up. Returns 1.
  static int UseLocalDB(int on);
  // If `on` is not 0, as it is at first, the host opens and closes the local databases itself. If
  // it is 0, every database call asks the server for the connection text, opens the database, works
  // and closes it, so that only one thread at a time can use a database. Set-up. Returns 1.
  static int CareOpenDBConn(int on);

  // Sets the cache state (names in qv::cache_state): 0 online, 1 offline by choice, 2 offline
  // because the network is bad. 0 and 2 also tell the socket transport that the network is good or
  // bad. Returns 1. Returns 0 and changes nothing for any other state, or if the server is a web
  // server. Any thread may call, but asks GetServerType, which may probe the server: only one
  // thread at a time may do that.
  static int SetCacheState(int state);
  // Returns the cache state, 0 to 2 as above. Unless it is 1, it first becomes 0 or 2 according to
  // GetIsNetworkBad(n). Returns 0 if the server is a web server. The thread rule of SetCacheState
  // holds.
  static int GetCacheState(int n);
  // Sets the folder in which answers to queries are kept; it is created if it does not exist. At
  // first there is none and nothing is kept; a null or empty path goes back to that. Returns 1, or
  // 0 if the folder cannot be used, in which case nothing is kept either. Any thread may call;
  // calls that run at that moment finish with the folder from before.
  static int SetCachePath(const char* path);
  // Removes every answer that is kept. Any thread may call. Returns 1, or 0 if that fails or no
  // folder is set.
  static int ClearCurCache();

  // Limits the memory that the cells of one answer may take, in bytes. It is half of the machine's
  // memory at first; 0 goes back to that. A query whose answer would take more fails like one whose
  // answer cannot be read, before the memory is taken. Any thread may call this; a read that runs
  // keeps the limit that it started with. Not part of the platform's interface: an extension of
  // this library. Returns 1, or 0 for a negative number, which changes nothing.
  static int SetResultLimit(long long bytes);
  // Sets how many threads may read one large answer, the calling one included. At first that is as
  // many as the machine has cores, and 0 goes back to that; 1 reads every answer on the calling
  // thread alone; more than 64 count as 64. The result is the same for every number. The other
  // threads are the library's own: they start when a large answer is first read, serve all threads
  // of the host, and end with FinitNet; the library then stays loaded until the process ends. If
  // the system gives no threads, the calling one reads alone. Any thread may call this; a read that
  // runs keeps the number that it started with. Not part of the platform's interface: an extension
  // of this library. Returns 1, or 0 for a negative number, which changes nothing.
  static int SetReaderThreads(int threads);
};
