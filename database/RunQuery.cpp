#include "RunQuery.h"

#include <optional>
#include <string>

#include "LocalErrors.h"
#include "QueryExchange.h"
#include "base/call/CancelFlag.h"
#include "base/call/LastError.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/RvoDatabase.h"
#include "qvnetcall/RvoServer.h"
#include "server/ModuleState.h"

namespace qv {

namespace {

QueryCache& Cache() { return ModuleState::Get().cache; }

// The cache stores files only.
bool NeedsFile(const Query& query) {
  return query.may_keep && Cache().IsOn() && Cache().State() == cache_state::kOnline;
}

bool MayKeep(const Query& query) {
  const bool allowed = !query.ask_server_to_keep || CRvoDatabase::GetServerIsSetCatche() != 0;
  return allowed && query.may_keep && Cache().State() == cache_state::kOnline;
}

void KeepAnswer(const std::string& key, const AnswerFile& file, Keep keep) {
  if (file.StaysInReply()) return;
  const bool is_packed = keep == Keep::kAsItCame && !file.CompressedPath().empty();
  const std::string& path = is_packed ? file.CompressedPath() : file.Path();
  const int flag = is_packed ? kCacheGzip : kCachePlain;
  if (file.CameInReply()) {
    Cache().Take(key, path, flag);
  } else {
    Cache().Store(key, path, flag);
  }
}

// Makes `file` the answer that the cache has. Returns 0 or the result of the call.
int FindKept(const std::string& key, AnswerFile& file) {
  const auto cached = Cache().Find(key, static_cast<const char*>(CRvoDatabase::GetTempFilePath()));
  if (cached) file = AnswerFile(*cached);
  if (cached || call::IsCancelled()) return result::kSuccess;
  call::SetError(error::kOffline, "offline, and the cache has no answer to this query");
  return result::kFailed;
}

int EndCancelled(const Query& query) {
  call::SetCancelled();
  return query.from_cache ? result::kNotDelivered : result::kOutcomeUnknown;
}

// Reads the answer, deletes its files, and stores it if it may be stored.
int ReadAnswer(const Query& query, const std::string& key, const AnswerFile& file,
               CRvoDbRes& result) {
  const DeleteAtExit deletion{file};
  // The answer may be large, and nobody waits for it any more.
  if (call::IsCancelled()) return EndCancelled(query);
  if (!file.ReadInto(result, query.web)) {
    call::SetErrorIfNone(error::kBadReply, "the answer cannot be read");
    return call::IsCancelled() ? EndCancelled(query) : result::kFailed;
  }
  if (MayKeep(query)) KeepAnswer(key, file, query.keep);
  return result::kSuccess;
}

}  // namespace

void AwaitAnswer(CMsgContent& reply, AnswerFile& file) {
  file = AnswerFile::New();
  reply.SetFileName(file.Path().c_str(), 0);
}

int ReadReply(const Query& query, CMsgContent& reply, AnswerFile& file, CRvoDbRes& result) {
  const int failed = ReceiveAnswer(reply, query.accept, !NeedsFile(query), file);
  if (failed != 0) return failed;
  return ReadAnswer(query, CacheKey(query.database, query.sql), file, result);
}

int RunQuery(const Query& query, CRvoDbRes& result) {
  call::ClearError();
  AnswerFile file;
  if (query.from_cache) {
    const std::string key = CacheKey(query.database, query.sql);
    const int failed = FindKept(key, file);
    return failed != 0 ? failed : ReadAnswer(query, key, file, result);
  }
  QueryExchange exchange(query.command, query.database, query.sql);
  AwaitAnswer(exchange.Reply(), file);
  const int failed = exchange.SendBy(query.web, query.compress);
  return failed != 0 ? failed : ReadReply(query, exchange.Reply(), file, result);
}

namespace {

// A connection that is open for one call, unless the host manages connections itself.
class CallConnection {
 public:
  explicit CallConnection(const char* database)
      : database_(database), is_open_(ModuleState::Get().care_open_connection == 0) {
    if (is_open_) CRvoServer::OpenLocalDB(database, CRvoServer::GetDBConnString(database));
  }
  ~CallConnection() {
    // Not CloseLocalDB, which would replace the error of the call.
    if (is_open_) ModuleState::Get().local_database->Close(database_);
  }
  CallConnection(const CallConnection&) = delete;
  CallConnection& operator=(const CallConnection&) = delete;

 private:
  const char* database_;
  bool is_open_;
};

void KeepLocalError(const CString& sql, const LocalDatabase& local) {
  const std::string said = local.LastError();
  if (call::IsCancelled()) {
    call::SetCancelled();
  } else if (sql.IsEmpty()) {
    call::SetError(error::kLocal, "the statement is empty");
  } else {
    call::SetError(ClassOfLocalError(said), said.empty() ? "the database gave no reason" : said);
  }
}

// Runs `act` on the local database object.
template <class Act>
int RunLocally(const CString& sql, const char* database, Act act) {
  if (call::IsCancelled()) {
    NoteLocalFailure(database, "cancelled");
    call::SetCancelled();
    return result::kFailed;
  }
  const CallConnection connection(database);
  // Even if it did not open, the host may have opened a connection of that name.
  LocalDatabase& local = *ModuleState::Get().local_database;
  const int result = act(local);
  call::ClearError();
  if (result != result::kSuccess) KeepLocalError(sql, local);
  return result;
}

}  // namespace

int FailForEmptyText() {
  call::SetError(error::kLocal, "the statement is empty");
  return result::kFailed;
}

int SelectLocally(const CString& sql, CRvoDbRes& result, const char* database) {
  return RunLocally(sql, database,
                    [&](LocalDatabase& local) { return local.Select(sql, result, database); });
}

int ExecuteLocally(const CString& sql, const char* database) {
  return RunLocally(sql, database,
                    [&](LocalDatabase& local) { return local.Execute(sql, database); });
}

}  // namespace qv
