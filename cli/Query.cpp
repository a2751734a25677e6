#include "Query.h"

#include <fmt/ostream.h>

#include <istream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "CacheFolder.h"
#include "ReturnCodes.h"
#include "Session.h"
#include "qvnetcall/QvNetCall4.h"

namespace qv {
namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";

// The statement, without the white space around it: a line feed that a file ends with must not make
// it another query for the cache.
std::string StatementFrom(const QueryOptions& options, std::istream& in) {
  std::string sql = options.sql;
  if (sql == "-") sql.assign(std::istreambuf_iterator<char>(in), {});
  sql.erase(sql.find_last_not_of(kWhiteSpace) + 1);
  sql.erase(0, sql.find_first_not_of(kWhiteSpace));
  return sql;
}

// Goes offline by choice. An empty query has the library load the server's kept settings and send
// nothing. They must allow keeping answers, or the query itself would go to the server after all.
bool GoOffline(const std::string& database, std::ostream& err) {
  if (CRvoServer::SetCacheState(1) != 1) {
    fmt::print(err,
               "qvcall: this kind of server has no offline work; check ServerType in "
               "QvNetClient.ini beside the library\n");
    return false;
  }
  const CString nothing;
  CRvoDbRes no_rows;
  (void)CRvoDatabase::SelectSQL(&nothing, &no_rows, database.c_str(), 1);
  if (CRvoDatabase::GetServerIsSetCatche() != 1) {
    fmt::print(err,
               "qvcall: the cache folder holds no answers of this server, or the server does "
               "not allow keeping them; run the query with --cache while it can be reached\n");
    return false;
  }
  return true;
}

bool PrepareCache(const Session& session, const QueryOptions& options, std::ostream& err) {
  std::optional<std::string> folder = options.cache_folder;
  if (folder->empty()) folder = DefaultCacheFolder();
  if (!folder) {
    fmt::print(err,
               "qvcall: neither XDG_CACHE_HOME nor HOME names a place for the cache; give "
               "--cache a folder\n");
    return false;
  }
  if (CRvoServer::SetCachePath(folder->c_str()) != 1) {
    fmt::print(err, "qvcall: the cache folder {} cannot be used; check that it can be written\n",
               *folder);
    return false;
  }
  if (options.offline) return GoOffline(options.database, err);
  // Only a failed contact tells the library that it is offline, and then it answers from the cache.
  (void)session.Probe();
  return true;
}

// Fills `rows`; the connection is not kept while somebody pages through them.
bool Fetch(const Connection& connection, const QueryOptions& options, const std::string& sql,
           CRvoDbRes& rows, std::ostream& err) {
  const Session session(connection);
  std::string error;
  if (!session.Configure(error)) {
    fmt::print(err, "qvcall: {}\n", error);
    return false;
  }
  if (options.use_cache && !PrepareCache(session, options, err)) return false;

  const CString text{std::string_view(sql)};
  const int code =
      CRvoDatabase::SelectSQL(&text, &rows, options.database.c_str(), options.use_cache ? 1 : 0);
  if (code != 0) {
    const ReturnCode words = ExplainQueryResult(code);
    fmt::print(err, "qvcall: {} (result {})\n  {}\n", words.meaning, code, words.advice);
    return false;
  }
  // An answer from the server would have brought the client back online.
  if (options.use_cache && CRvoServer::GetCacheState(1) != 0) {
    fmt::print(err, "answered from the cache: {}\n",
               options.offline ? "working offline" : "the server cannot be reached");
  }
  return true;
}

}  // namespace

int RunQuery(const Connection& connection, const QueryOptions& options, std::istream& in,
             std::ostream& out, std::ostream& err) {
  const std::string sql = StatementFrom(options, in);
  if (in.bad()) {
    fmt::print(err, "qvcall: standard input cannot be read\n");
    return kFailed;
  }
  if (sql.empty() || sql.find('\0') != std::string::npos) {
    fmt::print(err, "qvcall: the statement is empty or holds a NUL byte\n");
    return kUsage;
  }
  CRvoDbRes rows;
  if (!Fetch(connection, options, sql, rows, err)) return kFailed;
  if (!WriteResult(rows, options.format, out)) return kFailed;
  if (!out.flush()) return kFailed;
  if (options.format == Format::kTable) {
    const int count = rows.GetRecordCount();
    fmt::print(err, "({} {})\n", count, count == 1 ? "row" : "rows");
  }
  return kDone;
}

}  // namespace qv
