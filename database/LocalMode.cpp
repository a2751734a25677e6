#include "LocalMode.h"

#include "qvnetcall/RvoServer.h"
#include "server/ModuleState.h"

namespace qv {

namespace {

// Runs `act` on the local database object, with the connection open around it when that is not the
// host's business.
template <class Act>
int RunLocally(const char* database, Act act) {
  const ModuleState& state = ModuleState::Get();
  const bool opens = state.care_open_connection == 0;
  if (opens) CRvoServer::OpenLocalDB(database, CRvoServer::GetDBConnString(database));
  LocalDatabase* const local = state.local_database;
  const int failed = local != nullptr ? act(*local) : 1;
  if (opens) CRvoServer::CloseLocalDB(database);
  return failed;
}

}  // namespace

int SelectLocally(const CString& sql, CRvoDbRes& result, const char* database) {
  return RunLocally(database,
                    [&](LocalDatabase& local) { return local.Select(sql, result, database); });
}

int ExecuteLocally(const CString& sql, const char* database) {
  return RunLocally(database, [&](LocalDatabase& local) { return local.Execute(sql, database); });
}

}  // namespace qv
