// The calls of CRvoDatabase that fill a result set: from the server, or from a file.
#include "RunQuery.h"
#include "base/call/LastError.h"
#include "qvnetcall/RvoDatabase.h"
#include "resultset/readers/RecordsetReaders.h"
#include "server/ModuleState.h"
#include "server/ServerType.h"

using qv::ModuleState;

int CRvoDatabase::SelectSQL(const CString* sql, CRvoDbRes* res, const char* database,
                            int use_cache) {
  const bool web = qv::IsWebServer();
  UpdateServerIsCompressInfo();
  if (ModuleState::Get().use_local_database != 0) return qv::SelectLocally(*sql, *res, database);
  if (sql->IsEmpty()) return qv::FailForEmptyText();
  // The state of the network is checked whether or not the cache may be used.
  const bool offline = IsCanUseOffCache(1) != 0;
  // A web server is asked to compress by its transport, never by the command.
  const bool compressed = IsCanUseCompressMode() != 0 && !web;
  const std::uint32_t command = compressed ? qv::kCommandQueryCompressed : qv::kCommandQuery;
  return qv::RunQuery({.command = command,
                       .sql = *sql,
                       .database = database,
                       .web = web,
                       .compress = m_ServerIsCompress,
                       .from_cache = offline && use_cache != 0,
                       .may_keep = use_cache != 0,
                       .keep = qv::Keep::kAsItCame},
                      *res);
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
