#include "LocalMode.h"

#include "qvnetcall/RvoServer.h"
#include "server/ModuleState.h"

namespace qv {

int SelectLocally(const CString& sql, CRvoDbRes& result, const char* database) {
  const ModuleState& state = ModuleState::Get();
  const bool opens = state.care_open_connection == 0;
  if (opens) CRvoServer::OpenLocalDB(database, CRvoServer::GetDBConnString(database));
  LocalDatabase* const local = state.local_database;
  const int failed = local != nullptr ? local->Select(sql, result, database) : 1;
  if (opens) CRvoServer::CloseLocalDB(database);
  return failed;
}

}  // namespace qv
