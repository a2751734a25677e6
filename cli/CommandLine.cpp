#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <limits>
#include <map>
#include <ostream>

namespace qv {
namespace {

const std::map<std::string, Format> kFormats = {
    {"table", Format::kTable}, {"csv", Format::kCsv}, {"json", Format::kJson}};

CLI::Validator NotEmpty() {
  return {[](const std::string& text) {
            return text.empty() ? std::string("must not be empty") : std::string();
          },
          ""};
}

void AddConnection(CLI::App& app, Connection& connection) {
  app.add_option("--server", connection.server, "Host name or address of the server")
      ->envname("QVCALL_SERVER")
      ->check(NotEmpty())
      ->capture_default_str();
  app.add_option("--port", connection.port, "Port of the server")
      ->envname("QVCALL_PORT")
      ->check(CLI::Range(1, 65535))
      ->required();
  app.add_option("--token", connection.token,
                 "Access token; the environment does not show it to other users")
      ->envname("QVCALL_TOKEN")
      ->check(NotEmpty());
  app.add_option("--timeout-ms", connection.timeout_ms,
                 "Longest time to connect, and to wait without progress, in milliseconds")
      ->check(CLI::Range(1, std::numeric_limits<int>::max()));
}

struct QueryCommand {
  CLI::App* command;
  CLI::Option* cache;
};

QueryCommand AddQuery(CLI::App& app, QueryOptions& query) {
  CLI::App* command = app.add_subcommand("query", "Run a SELECT statement and print its rows");
  command->add_option("sql", query.sql, "The statement; - reads it from standard input")
      ->required();
  command->add_option("--db", query.database, "Name of the database on the server")
      ->check(NotEmpty())
      ->required();
  command->add_option("--format", query.format, "table, csv or json")
      ->transform(CLI::CheckedTransformer(kFormats))
      ->option_text("table|csv|json [table]");
  command->footer(
      "Binary cells become files in the temporary folder, which stay; the cells show their paths.");
  CLI::Option* cache =
      command
          ->add_option(
              "--cache", query.cache_folder,
              "Keep answers in DIR and use them while the server cannot be reached. "
              "Without DIR, a folder of the user's own; then write it behind the statement")
          ->expected(0, 1)
          ->option_text("[DIR]");
  command->add_flag("--offline", query.offline,
                    "Answer from the cache only, without any contact; implies --cache");
  return {command, cache};
}

}  // namespace

ParsedCommandLine ParseCommandLine(int argc, const char* const* argv, std::ostream& out,
                                   std::ostream& err) {
  ParsedCommandLine parsed;
  QueryOptions query;
  CLI::App app("Talks to a design-management server from the command line.", "qvcall");
  app.fallthrough()->require_subcommand(1);
  app.footer(
      "Exit status: 0 success, 1 a failed call, 2 wrong usage.\n"
      "Example: qvcall --port 4000 query \"SELECT * FROM projects\" --db DESIGNDB");
  AddConnection(app, parsed.command.connection);
  const QueryCommand query_command = AddQuery(app, query);
  app.add_subcommand("ping", "Ask whether the server answers");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    parsed.exit_status = app.exit(error, out, err) == 0 ? kDone : kUsage;
    return parsed;
  }
  if (query_command.command->parsed()) {
    query.use_cache = query.offline || query_command.cache->count() != 0;
    parsed.command.query = query;
  }
  return parsed;
}

}  // namespace qv
