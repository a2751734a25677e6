// Runs one text for a call: at the server, from the query cache, or on a local database.
#pragma once

#include <cstdint>

#include "QueryExchange.h"
#include "qvnetcall/framework/String.h"

class CRvoDbRes;

namespace qv {

// Which file of a compressed answer the query cache stores.
enum class Keep {
  kAsItCame,  // the gzip file
  kUnpacked,
};

struct Query {
  std::uint32_t command;
  const CString& sql;
  const char* database;
  // Whether the server is a web server.
  bool web;
  // Whether a web server should compress the answer.
  int compress;
  Accept accept = Accept::kPlainOrCompressed;
  // Whether the answer comes from the query cache: the client is offline and the caller allows it.
  bool from_cache;
  // Whether the caller allows storing the answer, which happens only while the client is online.
  bool may_keep;
  // Whether the server must allow it as well.
  bool ask_server_to_keep = true;
  Keep keep;
};

// Gets the answer and reads it into `result`. Returns what SelectSQL returns when it queries a
// server.
[[nodiscard]] int RunQuery(const Query& query, CRvoDbRes& result);

// The two ends of a query whose request and reply the caller passes to a transport. AwaitAnswer
// makes `file` the one that the reply's file goes to. ReadReply reads a reply that was delivered
// and returns what RunQuery returns.
void AwaitAnswer(CMsgContent& reply, AnswerFile& file);
[[nodiscard]] int ReadReply(const Query& query, CMsgContent& reply, AnswerFile& file,
                            CRvoDbRes& result);

}  // namespace qv

class CRvoDbRes;
class CString;

namespace qv {

// What every call returns for an empty text, which is not sent.
[[nodiscard]] int FailForEmptyText();

// Run a query, or a statement without rows, on the local database of that name. Open and close the
// connection unless the host manages it. Return 0, or 1 on failure.
[[nodiscard]] int SelectLocally(const CString& sql, CRvoDbRes& result, const char* database);
[[nodiscard]] int ExecuteLocally(const CString& sql, const char* database);

}  // namespace qv
