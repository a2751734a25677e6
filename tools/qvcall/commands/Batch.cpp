#include "Commands.h"

#include <fmt/ostream.h>

#include <fstream>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SqlInput.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/output/ReturnCodes.h"
#include "tools/qvcall/progress/CallProgress.h"
#include "tools/qvcall/session/Session.h"

namespace qv::tool {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kShownCells = 80;

using Statements = std::vector<ScriptStatement>;

std::optional<std::string> ReadScript(const std::string& file, std::istream& in) {
  if (file == "-") return ReadAll(in);
  std::ifstream script(file, std::ios::binary);
  return script ? ReadAll(script) : std::nullopt;
}

std::string Counted(std::size_t statements) {
  return fmt::format("{} {}", statements, statements == 1 ? "statement" : "statements");
}

// Prints `what` about the statement of that number, counted from 1, and the statement's first line.
void PrintStatement(const Statements& statements, std::size_t number, std::string_view what,
                    std::ostream& err) {
  const auto& [text, line] = statements[number - 1];
  std::string_view first_line = text.substr(0, text.find('\n'));
  if (!first_line.empty() && first_line.back() == '\r') first_line.remove_suffix(1);
  fmt::print(err, "  statement {} of {}, in line {}{}:\n  {}\n", number, statements.size(), line,
             what, VisibleStart(first_line, kShownCells));
}

// The server may not name a statement.
void PrintRefused(const Statements& statements, std::size_t number, std::ostream& err) {
  if (number == 0 || number > statements.size()) {
    fmt::print(err, "  the server does not name a statement of the batch; nothing was run\n");
    return;
  }
  PrintStatement(statements, number, "; nothing was run", err);
}

// Checked here, because a batch that is too large would be sent without its end.
bool Fits(const Statements& statements, const std::string& database, std::ostream& err) {
  const RequestSize size = MeasureBatch(database, statements);
  if (size.fitting == statements.size()) return true;
  fmt::print(
      err,
      "qvcall: the batch is too large for one request, which can hold about {} bytes: it has "
      "{}; nothing was sent\n",
      kRequestRoom, size.bytes);
  PrintStatement(statements, size.fitting + 1, ", is the first that does not fit", err);
  fmt::print(err, "  split the batch before it; each part is then run wholly or not at all\n");
  return false;
}

// Splits the script. Returns no statements, with the reason on `err`, if it cannot be sent.
Statements StatementsOf(std::string_view script, std::ostream& err) {
  if (script.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    script.remove_prefix(kByteOrderMark.size());
  }
  Statements statements;
  if (script.find('\0') == std::string_view::npos) statements = SplitStatements(script);
  if (statements.empty()) {
    fmt::print(err, "qvcall: the batch has no statement or contains a NUL byte\n");
  }
  return statements;
}

int Send(const Statements& statements, const char* database, CallProgress& progress) {
  CStringArray texts;
  for (const ScriptStatement& statement : statements) texts.Add(CString(statement.text));
  progress.Begin("Sending " + Counted(statements.size()), MeasureBatch(database, statements).bytes);
  const int code = CRvoDatabase::ExecuteMultiSQL(&texts, database);
  progress.End();
  return code;
}

}  // namespace

int Run(const ConnectionOptions& connection, const BatchOptions& options, std::istream& in,
        std::ostream& err) {
  const std::optional<std::string> script = ReadScript(options.file, in);
  if (!script) {
    fmt::print(err, "qvcall: {} cannot be read, or exceeds 64 MB\n",
               options.file == "-" ? "standard input" : options.file);
    return kFailed;
  }
  const Statements statements = StatementsOf(*script, err);
  if (statements.empty()) return kUsage;
  if (!Fits(statements, options.database, err)) return kFailed;
  CallProgress progress(err);
  Session session(connection, options.database, Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  const int code = Send(statements, session.Database(), progress);
  if (code != result::kSuccess) {
    session.PrintFailure(Call::kBatch, code, err);
    if (code >= result::kBatchRefused) {
      PrintRefused(statements, static_cast<std::size_t>(code - result::kBatchRefused), err);
    }
    return kFailed;
  }
  fmt::print(err, "done ({})\n", Counted(statements.size()));
  return kDone;
}

}  // namespace qv::tool
