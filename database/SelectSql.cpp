// The calls of CRvoDatabase that fill a result set: from the server, or from a file.
#include "ManyCalls.h"
#include "RunQuery.h"
#include "base/call/LastError.h"
#include "qvnetcall/RvoDatabase.h"
#include "resultset/readers/RecordsetReaders.h"
#include "server/ModuleState.h"
#include "server/ServerType.h"

using qv::ModuleState;

namespace {

// A query to the server, which a web server is never asked to compress by the command.
qv::Query QueryFor(const CString& sql, const char* database, int use_cache, bool compressed) {
  return {.command = compressed ? qv::kCommandQueryCompressed : qv::kCommandQuery,
          .sql = sql,
          .database = database,
          .web = false,
          .compress = CRvoDatabase::GetServerIsCompressMode(),
          .from_cache = false,
          .may_keep = use_cache != 0,
          .keep = qv::Keep::kAsItCame};
}

int SelectAlone(const CRvoQuery& query, CRvoOutcome& outcome) {
  CRvoDbRes dropped;
  CRvoDbRes& rows = outcome.rows != nullptr ? *outcome.rows : dropped;
  return CRvoDatabase::SelectSQL(query.sql, &rows, query.database, query.use_cache);
}

}  // namespace

int CRvoDatabase::SelectSQL(const CString* sql, CRvoDbRes* res, const char* database,
                            int use_cache) {
  const bool web = qv::IsWebServer();
  UpdateServerIsCompressInfo();
  if (ModuleState::Get().use_local_database != 0) return qv::SelectLocally(*sql, *res, database);
  if (sql->IsEmpty()) return qv::FailForEmptyText();
  // The state of the network is checked whether or not the cache may be used.
  const bool offline = IsCanUseOffCache(1) != 0;
  qv::Query query = QueryFor(*sql, database, use_cache, IsCanUseCompressMode() != 0 && !web);
  query.web = web;
  query.from_cache = offline && use_cache != 0;
  return qv::RunQuery(query, *res);
}

int CRvoDatabase::SelectMany(const CRvoQuery* queries, CRvoOutcome* results, int count) {
  if (count <= 0) return qv::RunMany({}, queries, results, 0);
  const bool web = qv::IsWebServer();
  UpdateServerIsCompressInfo();
  const bool is_local = ModuleState::Get().use_local_database != 0;
  const bool compressed = IsCanUseCompressMode() != 0;
  const auto read = [compressed](const CRvoQuery& one, CMsgContent& reply, qv::AnswerFile& file,
                                 CRvoOutcome& outcome) {
    CRvoDbRes dropped;
    CRvoDbRes& rows = outcome.rows != nullptr ? *outcome.rows : dropped;
    return qv::ReadReply(QueryFor(*one.sql, one.database, one.use_cache, compressed), reply, file,
                         rows);
  };
  return qv::RunMany({.together = !is_local && !web && IsCanUseOffCache(1) == 0,
                      .command = compressed ? qv::kCommandQueryCompressed : qv::kCommandQuery,
                      .has_answer_file = true,
                      .alone = SelectAlone,
                      .read = read,
                      .is_offline = [] { return IsCanUseOffCache(1) != 0; }},
                     queries, results, count);
}

int CRvoDatabase::ExecuteSP(const CString* sql, CRvoDbRes* result, const char* database,
                            int use_cache) {
  const bool web = qv::IsWebServer();
  // Unlike SelectSQL, this loads the settings only if the server is a web server.
  if (web) UpdateServerIsCompressInfo();
  if (ModuleState::Get().use_local_database != 0) {
    return qv::SelectLocally(*sql, *result, database);
  }
  if (sql->IsEmpty()) return qv::FailForEmptyText();
  const bool offline = IsCanUseOffCache(1) != 0;
  return qv::RunQuery({.command = qv::kCommandProcedure,
                       .sql = *sql,
                       .database = database,
                       .web = web,
                       .compress = m_ServerIsCompress,
                       .from_cache = offline && use_cache != 0,
                       .may_keep = use_cache != 0,
                       .keep = qv::Keep::kUnpacked},
                      *result);
}

long long CRvoDatabase::GetStoredAnswerTime(const CString* sql, const char* database) {
  return ModuleState::Get().cache.StoredAt(qv::CacheKey(database, *sql)).value_or(0);
}

int CRvoDatabase::ReadFromXmlFile(const char* path, CRvoDbRes* res,
                                  const tagTEMPFILEINFO& temp_files) {
  qv::call::ClearError();
  return qv::ReadRowsetFile(path, *res, temp_files) ? 1 : 0;
}

int CRvoDatabase::ReadFromXmlFile2(const char* path, CRvoDbRes* res,
                                   const tagTEMPFILEINFO& temp_files) {
  qv::call::ClearError();
  return qv::ReadSchemaFile(path, *res, temp_files) ? 1 : 0;
}
