// Queries on the platform's databases, and the server's settings that steer them.
#pragma once

#include <atomic>

#include "qvnetcall/Export.h"
#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/TempFileInfo.h"
#include "qvnetcall/framework/String.h"
#include "qvnetcall/framework/StringArray.h"

// All members are static. Queries may run on several threads at once, each with a result set of its
// own, but for those on one local database that each call opens (CRvoServer::CareOpenDBConn); the
// two set-up calls SetFileTempInfo and Ini are to be called while no other call runs. Pointers are
// not null and stay their caller's; texts end at their first NUL. Nothing throws but
// std::bad_alloc. Where a limit
// on the size of files ends programs by a signal (SIGXFSZ), the host ignores that signal, so that
// the limit is an error like a full disk.
class QVNETCALL_API CRvoDatabase {
 public:
  // Sets up the record of temporary files: the system's temporary folder, prefix "qvcd", extension
  // "tmp". The library does this itself when it is loaded.
  static void Ini();
  // The folder that temporary files are made in.
  static CString GetTempFilePath();
  // Where temporary files and the files of binary cells go. `path` ends with the platform's
  // separator. Texts that do not fit their 260 bytes are cut.
  static void SetFileTempInfo(const char* path, const char* prefix, const char* ext);
  static void SetFileTempInfo(const char* path);
  // A new name for a temporary file: "TempClient_", an identifier in registry form, ".txt".
  static CString GetTempFileNameA();

  // Runs a query on the server's database of that name and appends columns and rows to `res`, which
  // is new or emptied. With `use_cache` non-zero the answer is kept in the query cache when the
  // server allows it, and taken from there while the client is offline. Returns one of
  // - 0: rows were read into `res`;
  // - 1: the text is empty, or offline without an answer in the cache, or the answer is unreadable;
  // - 2: the reply's fields could not be read;
  // - 3: the server refused the query;
  // - 10: a compressed answer could not be unpacked;
  // - any other value is the transport's: -1 not delivered, -2 outcome unknown, -3 a damaged reply.
  //
  // In local mode (CRvoServer::UseLocalDB): 0, or 1 when the query failed or no such database is
  // open.
  static int SelectSQL(const CString* sql, CRvoDbRes* res, const char* database, int use_cache);

  // Runs a procedure call, or a query, on the server's database of that name. Arguments and results
  // as SelectSQL has them. The server's settings are loaded first only when it is a web server;
  // with a socket server nothing is kept, and no work is offline, before a query has loaded them.
  static int ExecuteSP(const CString* sql, CRvoDbRes* result, const char* database, int use_cache);

  // Runs one statement that gives no rows. Returns one of
  // - 0: done;
  // - 1: the text is empty, or the server refused the statement, or the client is offline, as far
  //   as settings that were loaded say that the server allows offline work;
  // - any other value is the transport's; -2 leaves open whether the statement was run.
  //
  // In local mode: 0, or 1 when the statement failed or no such database is open.
  static int ExecuteSQL(const CString* sql, const char* database);

  // Runs statements in their order, all of them or none, in one exchange over the socket transport,
  // offline or not. An empty statement, and one that no longer fits, ends the request: the server
  // hears of fewer statements than were counted. Returns one of
  // - 0: done;
  // - 100 + n: the server refused the batch; n is its number for the statement that failed, as it
  //   came;
  // - 2: the reply does not say that the batch was done, nor which statement failed;
  // - -1: nothing was delivered; also always in local mode, which knows no batches;
  // - any other value is the transport's; -2 leaves open whether the batch was run.
  static int ExecuteMultiSQL(const CStringArray* sqls, const char* database);

  // Reads a recordset file into `res`: the rowset dialect, and the schema dialect of web servers.
  // Files of binary cells are named by `temp_files` and stay. 1, or 0 when the file cannot be read;
  // columns found until then stay.
  static int ReadFromXmlFile(const char* path, CRvoDbRes* res, const tagTEMPFILEINFO& temp_files);
  static int ReadFromXmlFile2(const char* path, CRvoDbRes* res, const tagTEMPFILEINFO& temp_files);

  // Has the settings below loaded again at the next query.
  static void SetNeedUpdateCompressState();
  // The server's settings, as last loaded: 1 or 0.
  static int GetServerIsCompressMode();
  static int GetDefaultSelectCompress();
  static int GetDefaultDisplayCompress();
  static int GetServerIsSetCatche();
  // Without a configured server: 1 when "UseAD" in section "ServerInfo" of "QvLogIn.ini" in the
  // library's folder is there at all, whatever its value.
  static int GetDefaultDisplayDomain();

  // The flags themselves; calls on any thread read and write them.
  static std::atomic<int>& m_NeedUpdateCompressState;
  static std::atomic<int>& m_bServerSetCache;
  static std::atomic<int>& m_ServerIsCompress;
  static std::atomic<int>& m_DefaultSelectCompress;
  static std::atomic<int>& m_DefaultDisplayCompress;
  static std::atomic<int>& m_DefaultDisplayDomain;

 private:
  // Loads the settings when they are due. 0 loaded or not due; 1, 2, 3 and transport results as
  // SelectSQL has them.
  static int UpdateServerIsCompressInfo();
  // 1 when a query may ask for a compressed answer.
  static int IsCanUseCompressMode();
  // 1 when the client is offline; with `need_server_cache` non-zero only if the server allows
  // caching as well.
  static int IsCanUseOffCache(int need_server_cache);
};
