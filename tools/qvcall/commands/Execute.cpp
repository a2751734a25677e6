#include "Execute.h"

#include <fmt/ostream.h>

#include <istream>
#include <string>
#include <string_view>

#include "SqlInput.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/session/Session.h"

namespace qv::tool {

int RunExec(const ConnectionOptions& connection, const ExecOptions& options, std::istream& in,
            std::ostream& err) {
  std::string sql;
  if (const int status = ReadStatement(options.sql, in, sql, err); status != kDone) return status;
  Session session(connection, options.database);
  if (!session.Start(err)) return kFailed;
  const CString text{std::string_view(sql)};
  const int code = CRvoDatabase::ExecuteSQL(&text, session.Database());
  if (code != 0) {
    session.PrintFailure(Call::kExec, code, err);
    return kFailed;
  }
  fmt::print(err, "done\n");
  return kDone;
}

}  // namespace qv::tool
