#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "QueueOptions.h"
#include "StoreCommands.h"
#include "tools/qvcall/output/ResultWriter.h"
#include "tools/qvcall/output/ReturnCodes.h"

namespace qv::tool {

// Exit statuses of the tool.
constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

// The server or database to connect to, and how.
struct ConnectionOptions {
  std::string server = "127.0.0.1";
  int port = 0;                     // 0: not given
  int http_port = 0;                // 0: not given
  bool web = false;                 // HTTP, regardless of the library's configuration
  std::string token{};              // empty: none
  std::string ca_file{};            // empty: the system's
  std::optional<int> timeout_ms{};  // nullopt: the transport's own
  std::string direct{};             // ODBC connection text; if given, no server is used

  // Returns the port that is used, 0 if none was given.
  [[nodiscard]] int Port() const { return web && http_port != 0 ? http_port : port; }
};

struct QueryOptions {
  Call call = Call::kQuery;  // or kProcedure
  std::string sql{};         // "-": read it from standard input
  std::string database{};    // empty only in direct mode, as in the other commands
  Style style{};
  bool use_cache = false;
  std::string cache_folder{};  // empty: the user's default folder
  bool offline = false;        // only together with use_cache
};

struct ExecOptions {
  std::string sql;  // "-": read it from standard input
  std::string database;
};

struct BatchOptions {
  std::string file;  // "-": standard input
  std::string database;
};

struct CommandLine {
  ConnectionOptions connection;
  std::optional<QueryOptions> query{};  // at most one of these is set; none: ping
  std::optional<ExecOptions> exec{};
  std::optional<BatchOptions> batch{};
  std::optional<StoreCommand> store{};
  std::optional<QueueCommand> queue{};
};

struct ParsedCommandLine {
  CommandLine command;
  std::optional<int> exit_status{};  // set if the program must exit with it at once
};

// Parses the command line and the environment. Prints help to `out` and errors to `err`.
[[nodiscard]] ParsedCommandLine ParseCommandLine(int argc, const char* const* argv,
                                                 std::ostream& out, std::ostream& err);

}  // namespace qv::tool
