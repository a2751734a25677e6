// CRvoDatabase::SelectSQL, and the entry points of the readers.
#include <string>

#include "LocalMode.h"
#include "QueryAnswer.h"
#include "QueryExchange.h"
#include "qvnetcall/RvoDatabase.h"
#include "resultset/RowsetReader.h"
#include "resultset/SchemaReader.h"
#include "server/ModuleState.h"
#include "server/ServerType.h"

using qv::ModuleState;

namespace {

// Asks the server; the answer lands in `file`. 0, or the result to return.
int AskServer(bool web, std::uint32_t command, const char* database, const CString& sql,
              qv::AnswerFile& file) {
  qv::QueryExchange exchange(command, database, sql);
  file = qv::AnswerFile::New();
  exchange.Reply().SetFileName(file.Path().c_str(), 0);
  const int result = exchange.SendBy(web, CRvoDatabase::m_ServerIsCompress);
  if (result != 0) return result;
  return qv::ReceiveAnswer(exchange.Reply(), qv::Accept::kPlainOrCompressed, file);
}

// Keeps the answer as it came: the gzip file when there is one.
void KeepAnswer(const std::string& key, const qv::AnswerFile& file) {
  qv::QueryCache& cache = ModuleState::Get().cache;
  if (file.CompressedPath().empty()) {
    cache.Store(key, file.Path(), qv::kCachePlain);
  } else {
    cache.Store(key, file.CompressedPath(), qv::kCacheGzip);
  }
}

}  // namespace

int CRvoDatabase::SelectSQL(const CString* sql, CRvoDbRes* res, const char* database,
                            int use_cache) {
  const ModuleState& state = ModuleState::Get();
  const bool web = qv::IsWebServer();
  UpdateServerIsCompressInfo();
  if (state.use_local_database != 0) return qv::SelectLocally(*sql, *res, database);
  if (sql->IsEmpty()) return qv::kQueryFailed;

  const std::string key = qv::CacheKey(database, *sql);
  qv::AnswerFile file;
  if (IsCanUseOffCache(1) != 0 && use_cache != 0) {
    const auto cached = state.cache.Find(key, static_cast<const char*>(GetTempFilePath()));
    if (!cached) return qv::kQueryFailed;
    file = qv::AnswerFile(*cached);
  } else {
    // A web server is asked to compress by its transport, never by the command.
    const bool compressed = IsCanUseCompressMode() != 0 && !web;
    const std::uint32_t command = compressed ? qv::kCommandQueryCompressed : qv::kCommandQuery;
    if (const int result = AskServer(web, command, database, *sql, file); result != 0)
      return result;
  }
  const qv::DeleteAtExit deletion{file};
  if (!file.ReadInto(*res, web)) return qv::kQueryFailed;
  const bool may_keep = GetServerIsSetCatche() != 0 && use_cache != 0;
  if (may_keep && state.cache.State() == qv::kOnline) KeepAnswer(key, file);
  return qv::kQueryDone;
}

int CRvoDatabase::ReadFromXmlFile(const char* path, CRvoDbRes* res,
                                  const tagTEMPFILEINFO& temp_files) {
  return qv::ReadRowsetFile(path, *res, temp_files) ? 1 : 0;
}

int CRvoDatabase::ReadFromXmlFile2(const char* path, CRvoDbRes* res,
                                   const tagTEMPFILEINFO& temp_files) {
  return qv::ReadSchemaFile(path, *res, temp_files) ? 1 : 0;
}
