#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "ResultWriter.h"

namespace qv {

// Exit statuses of the tool.
constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

// Where the server is and how to talk to it.
struct Connection {
  std::string server = "127.0.0.1";
  int port = 0;
  std::string token;                // empty: none
  std::optional<int> timeout_ms{};  // none: the transport's own
};

struct QueryOptions {
  std::string sql;  // "-": standard input has it
  std::string database;
  Format format = Format::kTable;
  bool use_cache = false;
  std::string cache_folder;  // empty: the user's default folder
  bool offline = false;      // only together with use_cache
};

struct CommandLine {
  Connection connection;
  std::optional<QueryOptions> query{};  // none: ping
};

struct ParsedCommandLine {
  CommandLine command;
  std::optional<int> exit_status{};  // when the program is to end with it at once
};

// Reads the command line and the environment. Help goes to `out`, what is wrong to `err`.
[[nodiscard]] ParsedCommandLine ParseCommandLine(int argc, const char* const* argv,
                                                 std::ostream& out, std::ostream& err);

}  // namespace qv
