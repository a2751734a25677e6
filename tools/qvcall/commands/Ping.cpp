#include "Commands.h"

#include <fmt/ostream.h>

#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/session/Session.h"

namespace qv::tool {
namespace {

// Returns what the user can do about a failure of that class, else `advice`.
std::string_view AdviceFor(int error_class, std::string_view advice) {
  if (error_class == error::kBadToken) return "check --token";
  return error_class == error::kBusy ? "try again later" : advice;
}

// Prints the reason of the failure, or without one what `meaning` says of the server.
int Fail(const Session& session, std::string_view meaning, std::string_view advice,
         std::ostream& err) {
  const Reason reason = session.LastReason();
  fmt::print(
      err, "qvcall: {}\n  {}\n",
      reason.text.empty() ? fmt::format("{} {}", session.Address(), meaning) : Visible(reason.text),
      AdviceFor(reason.error_class, advice));
  return kFailed;
}

int Answers(const Session& session, std::ostream& out) {
  fmt::print(out, "{} answers\n", session.Address());
  return kDone;
}

int PingSocket(const Session& session, std::ostream& out, std::ostream& err) {
  if (session.Probe()) return Answers(session, out);
  if (session.IsUnreachable()) {
    return Fail(session, "cannot be reached", "check --server and --port", err);
  }
  return Fail(session, "can be reached, but does not answer like the platform's server",
              "check --port and --token", err);
}

// The library checks links only over sockets; over HTTP, a small query serves the same purpose.
int PingWeb(const Session& session, std::ostream& out, std::ostream& err) {
  CRvoDatabase::m_NeedUpdateCompressState = 0;
  const CString sql("select 1");
  CRvoDbRes rows;
  switch (CRvoDatabase::SelectSQL(&sql, &rows, "PLATDB", 0)) {
    case result::kSuccess:
      return Answers(session, out);
    case result::kNotDelivered:
      return Fail(session, "cannot be reached",
                  "check --server and --http-port and, for https://, the server's certificate and "
                  "--ca-file",
                  err);
    case result::kQueryRefused:
      return Fail(session, "can be reached, but refuses a small query", "check --token", err);
    default:
      return Fail(session, "can be reached, but does not answer like the platform's web server",
                  "check --http-port", err);
  }
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
