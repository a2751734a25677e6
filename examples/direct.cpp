// Uses a database without any server. Usage: direct CONNECTION-TEXT
//
// Any ODBC driver will do, for instance that of SQLite:
//     direct "Driver=SQLite3;Database=plans.db"
#include <qvnetcall/QvNetCall4.h>

#include <cstdio>

namespace {

// The name under which the program knows the database, as it would know one on the server.
constexpr const char kPlans[] = "PLANS";

// Says why the driver refused the last call.
bool Done(int result) {
  if (result == qv::result::kSuccess) return true;
  std::fprintf(stderr, "failed: %s\n", CRvoServer::GetLastErrorText().GetString());
  return false;
}

bool Run(const char* statement) {
  const CString sql = statement;
  return Done(CRvoDatabase::ExecuteSQL(&sql, kPlans));
}

bool Print(const char* query) {
  CRvoDbRes rows;
  const CString sql = query;
  if (!Done(CRvoDatabase::SelectSQL(&sql, &rows, kPlans, 0))) return false;
  for (int row = 0; row < rows.GetRecordCount(); ++row) {
    std::printf("%ld: %s, scale %s\n", rows._int(row, "id"), rows._text(row, "name").GetString(),
                rows._text(row, "scale").GetString());
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return std::fputs("usage: direct CONNECTION-TEXT\n", stderr), 2;
  CRvoServer::InitNet();
  CRvoServer::UseLocalDB(1);  // from now on, databases are those that this program opens

  // OpenLocalDB returns 1 for success, as most calls do that are not about data.
  bool done = Done(CRvoServer::OpenLocalDB(kPlans, argv[1]) == 1 ? 0 : 1);
  done = done && Run("create table plans (id integer, name varchar(40), scale double precision)");
  done = done && Run("insert into plans values (1, 'Pier 3', 0.02), (2, '总平面图', 0.001)");
  done = done && Print("select * from plans order by id");
  done = done && Run("drop table plans");

  CRvoServer::CloseLocalDB(kPlans);
  CRvoServer::FinitNet();
  return done ? 0 : 1;
}
