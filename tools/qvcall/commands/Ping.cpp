#include "Commands.h"

#include <fmt/ostream.h>

#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/session/Session.h"

namespace qv::tool {
namespace {

int PingSocket(const Session& session, std::ostream& out, std::ostream& err) {
  if (session.Probe()) {
    fmt::print(out, "{} answers\n", session.Address());
    return kDone;
  }
  if (CRvoServer::GetIsNetworkBad(1) == 1) {
    fmt::print(err, "qvcall: {} cannot be reached; check --server and --port\n", session.Address());
  } else {
    fmt::print(err,
               "qvcall: {} can be reached, but does not answer like the platform's server; "
               "check --port and --token\n",
               session.Address());
  }
  return kFailed;
}

// The library checks links only over sockets; over HTTP, a small query serves the same purpose.
int PingWeb(const Session& session, std::ostream& out, std::ostream& err) {
  CRvoDatabase::m_NeedUpdateCompressState = 0;
  const CString sql("select 1");
  CRvoDbRes rows;
  const int code = CRvoDatabase::SelectSQL(&sql, &rows, "PLATDB", 0);
  if (code == result::kSuccess) {
    fmt::print(out, "{} answers\n", session.Address());
    return kDone;
  }
  if (code == result::kNotDelivered) {
    fmt::print(
        err,
        "qvcall: {} cannot be reached; check --server and --http-port and, for https://, the "
        "server's certificate and --ca-file\n",
        session.Address());
  } else if (code == result::kQueryRefused) {
    fmt::print(err, "qvcall: {} can be reached, but refuses a small query; check --token\n",
               session.Address());
  } else {
    fmt::print(err,
               "qvcall: {} can be reached, but does not answer like the platform's web server; "
               "check --http-port\n",
               session.Address());
  }
  return kFailed;
}

}  // namespace

int RunPing(const ConnectionOptions& connection, std::ostream& out, std::ostream& err) {
  Session session(connection, "");
  if (!session.Start(err)) return kFailed;
  switch (session.Way()) {
    case Route::kSocket:
      return PingSocket(session, out, err);
    case Route::kWeb:
      return PingWeb(session, out, err);
    case Route::kDirect:
      break;
  }
  fmt::print(out, "the database can be opened\n");
  return kDone;
}

}  // namespace qv::tool
