#include "Ping.h"

#include <fmt/ostream.h>

#include "Session.h"
#include "qvnetcall/RvoServer.h"

namespace qv {

int RunPing(const Connection& connection, std::ostream& out, std::ostream& err) {
  const Session session(connection);
  if (!session.Configure(err)) return kFailed;
  if (session.Probe()) {
    fmt::print(out, "{}:{} answers\n", connection.server, connection.port);
    return kDone;
  }
  if (CRvoServer::GetIsNetworkBad(1) == 1) {
    fmt::print(err, "qvcall: {}:{} cannot be reached; check --server and --port\n",
               connection.server, connection.port);
  } else {
    fmt::print(err,
               "qvcall: {}:{} can be reached, but does not answer as the platform's server does; "
               "check --port and --token\n",
               connection.server, connection.port);
  }
  return kFailed;
}

}  // namespace qv
