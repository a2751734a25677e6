#include "Execute.h"

#include <fmt/ostream.h>

#include <fstream>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include "DisplayWidth.h"
#include "ReturnCodes.h"
#include "Session.h"
#include "SqlInput.h"
#include "SqlSplitter.h"
#include "qvnetcall/QvNetCall4.h"

namespace qv {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kShownCells = 80;

std::optional<std::string> ReadScript(const std::string& file, std::istream& in) {
  if (file == "-") return ReadAll(in);
  std::ifstream script(file, std::ios::binary);
  return script ? ReadAll(script) : std::nullopt;
}

int Send(const std::vector<ScriptStatement>& statements, const std::string& database) {
  CStringArray texts;
  for (const ScriptStatement& statement : statements) texts.Add(CString(statement.text));
  return CRvoDatabase::ExecuteMultiSQL(&texts, database.c_str());
}

// `number` counts from 1; the server may name none.
void PrintRefused(const std::vector<ScriptStatement>& statements, std::size_t number,
                  std::ostream& err) {
  if (number == 0 || number > statements.size()) {
    fmt::print(err, "  the server names no statement of the batch; nothing was run\n");
    return;
  }
  const auto& [text, line] = statements[number - 1];
  std::string_view first_line = text.substr(0, text.find('\n'));
  if (!first_line.empty() && first_line.back() == '\r') first_line.remove_suffix(1);
  fmt::print(err, "  statement {} of {}, in line {}; nothing was run:\n  {}\n", number,
             statements.size(), line, VisibleStart(first_line, kShownCells));
}

}  // namespace

int RunExec(const Connection& connection, const ExecOptions& options, std::istream& in,
            std::ostream& err) {
  std::string sql;
  if (const int status = ReadStatement(options.sql, in, sql, err); status != kDone) return status;
  const Session session(connection);
  if (!session.Configure(err)) return kFailed;
  const CString text{std::string_view(sql)};
  const int code = CRvoDatabase::ExecuteSQL(&text, options.database.c_str());
  if (code != 0) {
    PrintFailure(Call::kExec, code, err);
    return kFailed;
  }
  fmt::print(err, "done\n");
  return kDone;
}

int RunBatch(const Connection& connection, const BatchOptions& options, std::istream& in,
             std::ostream& err) {
  const std::optional<std::string> script = ReadScript(options.file, in);
  if (!script) {
    fmt::print(err, "qvcall: {} cannot be read\n",
               options.file == "-" ? "standard input" : options.file);
    return kFailed;
  }
  std::string_view text = *script;
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    text.remove_prefix(kByteOrderMark.size());
  }
  const std::vector<ScriptStatement> statements = SplitStatements(text);
  if (statements.empty() || text.find('\0') != std::string_view::npos) {
    fmt::print(err, "qvcall: the batch has no statement or holds a NUL byte\n");
    return kUsage;
  }
  const Session session(connection);
  if (!session.Configure(err)) return kFailed;
  const int code = Send(statements, options.database);
  if (code != 0) {
    PrintFailure(Call::kBatch, code, err);
    if (code >= kRefusedBatch) {
      PrintRefused(statements, static_cast<std::size_t>(code - kRefusedBatch), err);
    }
    return kFailed;
  }
  fmt::print(err, "done ({} {})\n", statements.size(),
             statements.size() == 1 ? "statement" : "statements");
  return kDone;
}

}  // namespace qv
