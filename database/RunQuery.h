// What SelectSQL, ExecuteSP and the query of the settings have in common: from a text to a filled
// result set.
#pragma once

#include <cstdint>

#include "QueryAnswer.h"
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
