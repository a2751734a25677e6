// Runs a query and prints its rows. Usage: query SERVER PORT
//
// The sample data of the stand-in server has what it asks for:
//     qvstandin --data DIR --port 4000 &
//     query 127.0.0.1 4000
#include <qvnetcall/QvNetCall4.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc != 3) return std::fputs("usage: query SERVER PORT\n", stderr), 2;
  CRvoServer::InitNet();
  CRvoServer::SetConinfo(argv[1], std::atol(argv[2]));

  CRvoDbRes rows;
  const CString sql = "select number, title, revision from documents where project_id = 1";
  const int result = CRvoDatabase::SelectSQL(&sql, &rows, "DESIGNDB", 0);
  if (result != qv::result::kSuccess) std::fprintf(stderr, "the query failed: %d\n", result);
  for (int more = rows.MoveFirst(); more == 1; more = rows.MoveNext()) {
    std::printf("%s, revision %s: %s\n", rows["number"].GetString(), rows["revision"].GetString(),
                rows["title"].GetString());
  }

  CRvoServer::FinitNet();
  return result == qv::result::kSuccess ? 0 : 1;
}
