// Keeps the answer to a query and uses it while there is no server. Usage: offline SERVER PORT
// FOLDER
#include <qvnetcall/QvNetCall4.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

// The last argument of SelectSQL allows the cache: to store the answer while the client is online,
// and to answer while it is not. The cache knows an answer by the exact text of the query.
int PrintNumberOfProjects() {
  const CString sql = "select count(*) as n from projects";
  CRvoDbRes rows;
  const int result = CRvoDatabase::SelectSQL(&sql, &rows, "DESIGNDB", 1);
  if (result != qv::result::kSuccess) {
    std::fprintf(stderr, "no answer: %s\n", CRvoServer::GetLastErrorText().GetString());
    return result;
  }
  // 1: report the state, and do not try to reach the server.
  if (CRvoServer::GetCacheState(1) == qv::cache_state::kOnline) {
    std::printf("%ld projects, says the server\n", rows._int(0, "n"));
  } else {
    const long long age = std::time(nullptr) - CRvoDatabase::GetStoredAnswerTime(&sql, "DESIGNDB");
    std::printf("%ld projects, says an answer that is %lld minutes old\n", rows._int(0, "n"),
                age / 60);
  }
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return std::fputs("usage: offline SERVER PORT FOLDER\n", stderr), 2;
  CRvoServer::InitNet();
  CRvoServer::SetConinfo(argv[1], std::atol(argv[2]));
  // The cache tells servers apart by their names only: use a folder for each server.
  if (CRvoServer::SetCachePath(argv[3]) != 1) std::fprintf(stderr, "%s cannot be used\n", argv[3]);

  const int online = PrintNumberOfProjects();
  // Now the user chooses to work without a server. If the network fails, the library goes offline
  // by itself (kNetworkBad).
  CRvoServer::SetCacheState(qv::cache_state::kOfflineByChoice);
  const int offline = PrintNumberOfProjects();

  CRvoServer::FinitNet();
  return online == qv::result::kSuccess && offline == qv::result::kSuccess ? 0 : 1;
}
