#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <map>
#include <ostream>
#include <string>

#include "CommandLineParts.h"

namespace qv::tool {
namespace {

constexpr int kLongestTimeout = 3600000;  // an hour; the transports accept no more

const std::map<std::string, Format> kFormats = {
    {"table", Format::kTable}, {"csv", Format::kCsv}, {"json", Format::kJson}};

void AddServer(CLI::App& app, ConnectionOptions& connection) {
  app.add_option("--server", connection.server,
                 "Host name or address of the server; with --web it may begin with https://")
      ->envname("QVCALL_SERVER")
      ->check(NotEmpty())
      ->capture_default_str();
  app.add_option("--port", connection.port,
                 "Port of the server; required except with --direct, ftp and cloud")
      ->envname("QVCALL_PORT")
      ->check(CLI::Range(1, 65535));
  app.add_flag("--web", connection.web,
               "Use HTTP. Without it, ServerType in the QvNetClient.ini beside the library selects "
               "the transport");
  app.add_option("--http-port", connection.http_port, "Port that --web uses; --port without it")
      ->envname("QVCALL_HTTP_PORT")
      ->check(CLI::Range(1, 65535));
  app.add_option("--token", connection.token,
                 "Access token; pass it in the environment to hide it from other users")
      ->envname("QVCALL_TOKEN")
      ->check(NotEmpty());
  app.add_option("--ca-file", connection.ca_file,
                 "PEM file with the certificate authorities to trust for https:// and ftpes://; "
                 "without it, the system's")
      ->check(ReadableFile());
  app.add_option("--timeout-ms", connection.timeout_ms,
                 "Longest time to connect, and longest time without progress, in milliseconds")
      ->check(CLI::Range(1, kLongestTimeout));
}

void AddDirect(CLI::App& app, std::string& connection_text) {
  app.add_option("--direct", connection_text,
                 "Use the database of this ODBC connection text, without a server. If it holds a "
                 "password, pass it in the environment to hide it from other users")
      ->envname("QVCALL_DIRECT")
      ->check(NotEmpty())
      ->option_text("CONNSTR (Env:QVCALL_DIRECT)");
}

constexpr const char kDatabaseHelp[] =
    "Name of the database on the server; required unless --direct is given";

void AddDatabase(CLI::App& command, std::string& database, const char* help = kDatabaseHelp) {
  command.add_option("--db", database, help)->check(NotEmpty());
}

void AddStatement(CLI::App& command, std::string& sql) {
  command.add_option("sql", sql, "The statement; - reads it from standard input")->required();
}

struct QueryCommand {
  CLI::App* command;
  CLI::Option* cache;
};

QueryCommand AddQuery(CLI::App& app, const char* name, const char* description,
                      QueryOptions& query) {
  CLI::App* command = app.add_subcommand(name, description);
  AddStatement(*command, query.sql);
  AddDatabase(*command, query.database);
  command->add_option("--format", query.style.format, "table, csv or json")
      ->transform(CLI::CheckedTransformer(kFormats))
      ->option_text("table|csv|json [table]");
  command
      ->add_option("--null", query.style.null_text,
                   "What stands for null in a table and in csv; without it, NULL in a table and "
                   "nothing in csv, where an empty text is \"\"")
      ->option_text("TEXT");
  command->add_flag("--csv-raw", query.style.keeps_controls,
                    "Write control characters in csv as they are, and do not spell them out");
  command->add_flag("--csv-safe", query.style.is_for_spreadsheets,
                    "Put an apostrophe before texts in csv that a spreadsheet would take for a "
                    "formula: those that begin with =, +, -, @, a tab or a carriage return");
  command->footer(
      "Binary cells are written to files in the temporary folder, which are not deleted; the cells "
      "show their paths. Over HTTP, all of them are written to the same file, one after the "
      "other.");
  CLI::Option* cache =
      command
          ->add_option(
              "--cache", query.cache_folder,
              "Store answers in DIR, in a folder for each server and port, and use them while the "
              "server cannot be reached. Without DIR, a folder of the user's own is used; then put "
              "--cache after the "
              "statement. Not with --web or --direct")
          ->expected(0, 1)
          ->option_text("[DIR]");
  command->add_flag("--offline", query.offline,
                    "Answer from the cache only, without contacting the server; implies --cache");
  return {command, cache};
}

void TakeQuery(const QueryCommand& from, QueryOptions& options, CommandLine& command) {
  if (!from.command->parsed()) return;
  options.use_cache = options.offline || from.cache->count() != 0;
  command.query = options;
}

CLI::App* AddExec(CLI::App& app, ExecOptions& exec) {
  CLI::App* command = app.add_subcommand("exec", "Run a statement that returns no rows");
  AddStatement(*command, exec.sql);
  AddDatabase(*command, exec.database);
  return command;
}

CLI::App* AddBatch(CLI::App& app, BatchOptions& batch) {
  CLI::App* command =
      app.add_subcommand("batch", "Run the statements of a file, all of them or none");
  command->add_option("file", batch.file, "The file; - is standard input")->required();
  AddDatabase(*command, batch.database, "Name of the database on the server; required");
  command->footer(
      "Statements end at each \";\" outside quotes (also `, $$ and $tag$), names in square "
      "brackets "
      "and comments. A backslash before a quote and a comment inside a comment are not recognized: "
      "such a text or comment must not contain \";\".\n"
      "A batch always uses the socket transport, even with --web: it goes to --port or, if "
      "that is not given, to --http-port, where the server must then accept both. Not with "
      "--direct.");
  return command;
}

}  // namespace

ParsedCommandLine ParseCommandLine(int argc, const char* const* argv, std::ostream& out,
                                   std::ostream& err) {
  ParsedCommandLine parsed;
  QueryOptions query;
  QueryOptions call{.call = Call::kProcedure};
  ExecOptions exec;
  BatchOptions batch;
  CLI::App app("Command-line client of a design-management server.", "qvcall");
  app.allow_windows_style_options(false);  // a slash begins a path on every system
  app.fallthrough()->require_subcommand(1);
  app.footer(
      "Exit status: 0 success, 1 a failed call, 2 wrong usage. An interrupt cancels the call of a\n"
      "query, call, exec or batch and ends the program by its signal (130 in a shell).\n"
      "Examples:\n"
      "  qvcall --port 4000 query \"SELECT * FROM projects\" --db DESIGNDB\n"
      "  qvcall --web --http-port 8080 query \"SELECT * FROM projects\" --db DESIGNDB\n"
      "  qvcall --direct \"Driver=SQLite3;Database=plans.db\" query \"SELECT * FROM projects\"\n"
      "  qvcall --port 4000 get -r drawings/structural .\n"
      "Commands for files and the directory use the socket transport, as batch does.");
  AddServer(app, parsed.command.connection);
  AddDirect(app, parsed.command.connection.direct);
  const QueryCommand query_command =
      AddQuery(app, "query", "Run a SELECT statement and print its rows", query);
  const QueryCommand call_command =
      AddQuery(app, "call", "Run a procedure call and print its rows", call);
  const CLI::App* exec_command = AddExec(app, exec);
  const CLI::App* batch_command = AddBatch(app, batch);
  app.add_subcommand("ping", "Ask whether the server answers");
  AddStoreCommands(app, parsed.command.store);
  AddQueueCommands(app, parsed.command.queue);
  try {
    app.parse(argc, argv);
    TakeQuery(query_command, query, parsed.command);
    TakeQuery(call_command, call, parsed.command);
    if (exec_command->parsed()) parsed.command.exec = exec;
    if (batch_command->parsed()) parsed.command.batch = batch;
    const std::string_view broken = BrokenRule(parsed.command);
    if (!broken.empty()) {
      throw CLI::ParseError(std::string(broken), CLI::ExitCodes::ValidationError);
    }
  } catch (const CLI::ParseError& error) {
    parsed.exit_status = app.exit(error, out, err) == 0 ? kDone : kUsage;
  }
  return parsed;
}

}  // namespace qv::tool
