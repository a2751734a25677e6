// Queries on the platform's databases, and the server's settings that steer them.
#pragma once

#include <atomic>

#include "qvnetcall/Export.h"
#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/TempFileInfo.h"
#include "qvnetcall/framework/String.h"
#include "qvnetcall/framework/StringArray.h"

// A query of CRvoDatabase::SelectMany or a statement of CRvoDatabase::ExecuteMany. Not part of the
// platform's interface, like all that belongs to these two: an extension of this library.
struct CRvoQuery {
  const CString* sql;
  const char* database;
  int use_cache;  // as for SelectSQL; ExecuteMany ignores it
};

// How such a call ended.
struct CRvoOutcome {
  CRvoDbRes* rows =
      nullptr;          // set by the caller of SelectMany: new or empty; null: rows are dropped
  int code = 0;         // what SelectSQL or ExecuteSQL would have returned
  int error_class = 0;  // why it failed (qv::error), and the text of the reason; 0 and an
  CString error_text;   // empty text if there is no reason
};

// All members are static. Queries may run on several threads at once, each with a result set of its
// own; queries on one local database may not while every call opens it anew
// (CRvoServer::CareOpenDBConn). Ini and SetFileTempInfo are set-up: call them while no other call
// runs. Pointers must not be null, and the caller keeps owning what they point to; texts end at
// their first NUL. Nothing but std::bad_alloc is thrown.
//
// A host that runs under a limit on the size of files (RLIMIT_FSIZE) must ignore the signal
// SIGXFSZ, so that reaching the limit is reported like a full disk and does not end the process.
class QVNETCALL_API CRvoDatabase {
 public:
  // Resets the record of temporary files: the system's temporary folder, prefix "qvcd", extension
  // "tmp". The library calls this itself when it is loaded. Set-up.
  static void Ini();
  // Returns the folder in which temporary files are created. Any thread may call, except during Ini
  // and SetFileTempInfo.
  static CString GetTempFilePath();
  // Set where temporary files and the files of binary cells are created; the second form sets the
  // folder only. `path` must end with the platform's separator. Texts that do not fit their field
  // of 260 bytes are truncated. Set-up.
  static void SetFileTempInfo(const char* path, const char* prefix, const char* ext);
  static void SetFileTempInfo(const char* path);
  // Returns a new name for a temporary file: "TempClient_", an identifier in registry form, ".txt".
  // Creates no file. Any thread may call.
  static CString GetTempFileNameA();

  // SelectSQL runs a query, and ExecuteSP a procedure call or a query, on the server's database of
  // that name. Both append the answer's columns and rows to the result set, which must be new or
  // empty. If `use_cache` is not 0, the answer is stored in the query cache if the server allows
  // that, and taken from there while the client is offline.
  //
  // SelectSQL first loads the server's settings if they are due; ExecuteSP does so only if the
  // server is a web server. So with a socket server, ExecuteSP stores no answer and does not work
  // offline until a query has loaded the settings.
  //
  // Return one of (names in qv::result)
  // - 0 (kSuccess): the rows were read into the result set;
  // - 1 (kFailed): the text is empty, or the client is offline and the cache has no answer, or the
  //   answer cannot be read;
  // - 2 (kReplyUnreadable): the reply's fields could not be read;
  // - 3 (kQueryRefused): the server refused the query;
  // - 10 (kUnpackFailed): the compressed answer could not be unpacked;
  // - -1 (kNotDelivered), -2 (kOutcomeUnknown), -3 (kBadReply), or another result of the transport.
  //
  // In local mode (CRvoServer::UseLocalDB) return 0, or 1 if the query failed or no such database
  // is open.
  static int SelectSQL(const CString* sql, CRvoDbRes* res, const char* database, int use_cache);
  static int ExecuteSP(const CString* sql, CRvoDbRes* result, const char* database, int use_cache);

  // Returns when the answer to a query or a procedure call was stored in the query cache, in
  // seconds since 1970 UTC, or 0 if the cache has no answer to that text. Thus a host can show how
  // old an answer is that it was given offline. Sends nothing. Not part of the platform's
  // interface: an extension of this library.
  static long long GetStoredAnswerTime(const CString* sql, const char* database);

  // Runs one statement, which returns no rows, on the server's database of that name. Returns one
  // of (names in qv::result)
  // - 0 (kSuccess): the server ran the statement;
  // - 1 (kFailed): the text is empty, or the server refused the statement, or the client is offline
  //   and the settings that were loaded say that the server allows offline work;
  // - -1 (kNotDelivered), -2 (kOutcomeUnknown), -3 (kBadReply), or another result of the transport;
  //   after -2 and -3 the statement may have been run.
  //
  // In local mode (CRvoServer::UseLocalDB) returns 0, or 1 if the statement failed or no such
  // database is open.
  static int ExecuteSQL(const CString* sql, const char* database);

  // SelectMany runs `count` queries, and ExecuteMany `count` statements, none of which may depend
  // on another one. Each has the result that SelectSQL or ExecuteSQL would have given, also from
  // the query cache, in local mode and offline, and one that fails does not stop the others. The
  // calls are sent without waiting for each answer, which saves the way to the server and back for
  // each, if the server is a socket server and both the transport and the server can do that;
  // otherwise they are made one after another. `results` are those of `queries` in the same order;
  // the caller owns both arrays of `count` elements. Memory is used for one answer at a time, apart
  // from the result sets.
  //
  // If the connection is lost, or the calls are cancelled, the result is -2 (kOutcomeUnknown) for
  // those that were sent and have no answer, and -1 (kNotDelivered) for those that were not sent.
  // If the server cannot be reached, all calls fail with -1 after one attempt, unless the client
  // may go offline. No call is sent twice.
  //
  // Return how many calls failed, whose `code` is not 0. CRvoServer::GetLastErrorClass and
  // GetLastErrorText then give the error of the first of them. A `count` below 1 does nothing.
  static int SelectMany(const CRvoQuery* queries, CRvoOutcome* results, int count);
  static int ExecuteMany(const CRvoQuery* queries, CRvoOutcome* results, int count);

  // Runs statements in their order, all of them or none, on the server's database of that name.
  // They are sent in one exchange over the socket transport, whatever the kind of the server and
  // whether or not the client is offline. An empty statement is left out, and so is every statement
  // after it or after one that no longer fits the request; the server then receives fewer
  // statements than the request announces. Returns one of (names in qv::result)
  // - 0 (kSuccess): the server ran the batch;
  // - 100 + n (kBatchRefused + n): the server refused the batch; n is the server's number for the
  //   statement that failed, passed on as it came;
  // - 2 (kReplyUnreadable): the reply says neither that the batch was run nor what failed;
  // - -1 (kNotDelivered): nothing reached the server;
  // - -1 (kNoLocalBatch): in local mode (CRvoServer::UseLocalDB), always;
  // - -2 (kOutcomeUnknown), -3 (kBadReply), or another result of the transport; after -2 and -3 the
  //   batch may have been run.
  static int ExecuteMultiSQL(const CStringArray* sqls, const char* database);

  // Read a recordset file into `res`, which must be new or empty: ReadFromXmlFile the rowset
  // dialect, ReadFromXmlFile2 the schema dialect, which web servers send. Binary cells are written
  // to files that are named by `temp_files` and are not deleted. Return 1. Return 0 if the file
  // cannot be read; the columns that were found until then stay in `res`. Any number of threads may
  // call at once, each with a result set of its own; they do not use the network.
  static int ReadFromXmlFile(const char* path, CRvoDbRes* res, const tagTEMPFILEINFO& temp_files);
  static int ReadFromXmlFile2(const char* path, CRvoDbRes* res, const tagTEMPFILEINFO& temp_files);

  // Makes the next query load the server's settings again.
  static void SetNeedUpdateCompressState();
  // Return the server's settings as they were last loaded, 1 or 0 each: whether the server can send
  // compressed answers, whether queries use that by default, whether users are offered that choice
  // by default, and whether clients may store answers in the query cache.
  static int GetServerIsCompressMode();
  static int GetDefaultSelectCompress();
  static int GetDefaultDisplayCompress();
  static int GetServerIsSetCatche();
  // Returns whether accounts of the directory are shown by default, 1 or 0. If a server is
  // configured (CRvoServer::SetConinfo), this is its setting as it was last loaded. Otherwise it is
  // 1 if "UseAD" in section "ServerInfo" of "QvLogIn.ini" in the library's folder has any value but
  // -1, even 0.
  static int GetDefaultDisplayDomain();

  // The flags themselves: whether the settings are due, and the five settings. Calls on any thread
  // read and write them.
  static std::atomic<int>& m_NeedUpdateCompressState;
  static std::atomic<int>& m_bServerSetCache;
  static std::atomic<int>& m_ServerIsCompress;
  static std::atomic<int>& m_DefaultSelectCompress;
  static std::atomic<int>& m_DefaultDisplayCompress;
  static std::atomic<int>& m_DefaultDisplayDomain;

 private:
  // Loads the settings if they are due. Returns 0 if they were loaded or are not due; otherwise 1,
  // 2, 3 or the transport's result, with the meanings that they have for SelectSQL.
  static int UpdateServerIsCompressInfo();
  // Returns 1 if a query may ask for a compressed answer, else 0.
  static int IsCanUseCompressMode();
  // Returns 1 if the client is offline, else 0. If `need_server_cache` is not 0, returns 1 only if
  // the server also allows answers to be cached.
  static int IsCanUseOffCache(int need_server_cache);
};
