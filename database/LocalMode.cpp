#include "LocalMode.h"

#include "qvnetcall/RvoServer.h"
#include "server/ModuleState.h"

namespace qv {

namespace {

// A connection that is open for one call, when that is not the host's business.
class CallConnection {
 public:
  explicit CallConnection(const char* database)
      : database_(database), is_open_(ModuleState::Get().care_open_connection == 0) {
    if (is_open_) CRvoServer::OpenLocalDB(database, CRvoServer::GetDBConnString(database));
  }
  ~CallConnection() {
    if (is_open_) CRvoServer::CloseLocalDB(database_);
  }
  CallConnection(const CallConnection&) = delete;
  CallConnection& operator=(const CallConnection&) = delete;

 private:
  const char* database_;
  bool is_open_;
};

// Runs `act` on the local database object.
template <class Act>
int RunLocally(const char* database, Act act) {
  const CallConnection connection(database);
  // Should it not open, the name may still have a connection that the host opened.
  return act(*ModuleState::Get().local_database);
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
