// How the calls run one text: at the server, out of the query cache, or on a local database.
#pragma once

#include <cstdint>

#include "QueryExchange.h"
#include "qvnetcall/framework/String.h"

class CRvoDbRes;

namespace qv {

// Which file of a compressed answer the query cache keeps.
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
  // Whether a web server shall compress the answer.
  int compress;
  Accept accept = Accept::kPlainOrCompressed;
  // Whether the answer comes from the query cache, because the client is offline and the caller
  // allows it.
  bool from_cache;
  // Whether the caller lets the answer be kept, which happens only while the client is online.
  bool may_keep;
  // Whether the server must allow it as well.
  bool ask_server_to_keep = true;
  Keep keep;
};

// Gets the answer and reads it into `result`. Returns what SelectSQL returns when it asks a server.
[[nodiscard]] int RunQuery(const Query& query, CRvoDbRes& result);

}  // namespace qv

class CRvoDbRes;
class CString;

namespace qv {

// Run a query, or a statement without rows, on the local database of that name, opening and closing
// it when the host does not care for that itself. 0, or 1 when it failed.
[[nodiscard]] int SelectLocally(const CString& sql, CRvoDbRes& result, const char* database);
[[nodiscard]] int ExecuteLocally(const CString& sql, const char* database);

}  // namespace qv
