// The commands for databases, the directory and the server itself. Each returns the exit status and
// prints failures and remarks to `err`. `in` is read only if the options name standard input.
#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Runs one query or procedure call and writes its rows to `out`.
[[nodiscard]] int Run(const ConnectionOptions& connection, const QueryOptions& options,
                      std::istream& in, std::ostream& out, std::ostream& err);

// Runs one statement that returns no rows.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ExecOptions& options,
                      std::istream& in, std::ostream& err);

// Runs the statements of a file, all of them or none, and shows the progress on a terminal.
[[nodiscard]] int Run(const ConnectionOptions& connection, const BatchOptions& options,
                      std::istream& in, std::ostream& err);

// Show the directory and the server itself, and write to its log.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ListGroups& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const ListUsers& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const WriteLog& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const ShowServer& command,
                      std::ostream& out, std::ostream& err);

// Checks whether the server answers.
[[nodiscard]] int RunPing(const ConnectionOptions& connection, std::ostream& out,
                          std::ostream& err);

}  // namespace qv::tool
