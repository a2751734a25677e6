#include "Commands.h"

#include <fmt/ostream.h>

#include <istream>
#include <string>
#include <string_view>

#include "AnswerCache.h"
#include "SqlInput.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/progress/CallProgress.h"
#include "tools/qvcall/session/Session.h"
#include "tools/qvcall/system/Terminal.h"

namespace qv::tool {
namespace {

// Runs the text by the call of the command.
int RunText(const QueryOptions& options, const char* database, const CString& text,
            CRvoDbRes& rows) {
  const auto call =
      options.call == Call::kProcedure ? CRvoDatabase::ExecuteSP : CRvoDatabase::SelectSQL;
  return call(&text, &rows, database, options.use_cache ? 1 : 0);
}

// Fills `rows`. The connection is closed before the rows are printed, which may take long.
bool Fetch(const ConnectionOptions& connection, const QueryOptions& options, const std::string& sql,
           CRvoDbRes& rows, std::ostream& err) {
  CallProgress progress(err);
  Session session(connection, options.database);
  if (!session.Start(err)) return false;
  if (options.use_cache && !PrepareCache(session, options, err)) return false;

  const CString text{std::string_view(sql)};
  progress.Begin();
  const int code = RunText(options, session.Database(), text, rows);
  progress.End();
  if (code != result::kSuccess) {
    if (!PrintMissingAnswer(session, options, text, code, err)) {
      session.PrintFailure(options.call, code, err);
    }
    return false;
  }
  PrintAge(session, options, text, err);
  return true;
}

// The formats for programs do not say how to write what a terminal would obey.
bool Print(const CRvoDbRes& rows, const Style& style, std::ostream& out) {
  if (style.format == Format::kTable || !OutputIsTerminal()) return WriteResult(rows, style, out);
  VisibleOutput visible(out);
  return WriteResult(rows, style, visible);
}

}  // namespace

int Run(const ConnectionOptions& connection, const QueryOptions& options, std::istream& in,
        std::ostream& out, std::ostream& err) {
  std::string sql;
  if (const int status = ReadStatement(options.sql, in, sql, err); status != kDone) return status;
  CRvoDbRes rows;
  if (!Fetch(connection, options, sql, rows, err)) return kFailed;
  if (!Print(rows, options.style, out)) return kFailed;
  if (!out.flush()) return kFailed;
  if (options.style.format == Format::kTable) {
    const int count = rows.GetRecordCount();
    fmt::print(err, "({} {})\n", count, count == 1 ? "row" : "rows");
  }
  return kDone;
}

int Run(const ConnectionOptions& connection, const ExecOptions& options, std::istream& in,
        std::ostream& err) {
  std::string sql;
  if (const int status = ReadStatement(options.sql, in, sql, err); status != kDone) return status;
  CallProgress progress(err);
  Session session(connection, options.database);
  if (!session.Start(err)) return kFailed;
  const CString text{std::string_view(sql)};
  progress.Begin();
  const int code = CRvoDatabase::ExecuteSQL(&text, session.Database());
  progress.End();
  if (code != result::kSuccess) {
    session.PrintFailure(Call::kExec, code, err);
    return kFailed;
  }
  fmt::print(err, "done\n");
  return kDone;
}

}  // namespace qv::tool
