// The commands for databases, the directory and the server itself.
#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Runs one query or procedure call and writes its rows to `out`; remarks and errors go to `err`.
// `in` is read when the statement is to come from there. Gives the exit status; whether `out` could
// take everything is told by `out` itself.
[[nodiscard]] int Run(const ConnectionOptions& connection, const QueryOptions& options,
                      std::istream& in, std::ostream& out, std::ostream& err);

// Runs one statement that gives no rows. `in` is read when the statement is to come from there;
// `err` hears how it went. Gives the exit status.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ExecOptions& options,
                      std::istream& in, std::ostream& err);

// Runs the statements of a file, all of them or none, and shows on a terminal how far it is. `in`
// is read when they are to come from there; `err` hears how it went. Gives the exit status.
[[nodiscard]] int Run(const ConnectionOptions& connection, const BatchOptions& options,
                      std::istream& in, std::ostream& err);

// Show the directory and the server itself, and write to its log. Each gives the exit status; `err`
// hears what went wrong.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ListGroups& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const ListUsers& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const WriteLog& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const ShowServer& command,
                      std::ostream& out, std::ostream& err);

// Says whether the server answers, and gives the exit status.
[[nodiscard]] int RunPing(const ConnectionOptions& connection, std::ostream& out,
                          std::ostream& err);

}  // namespace qv::tool
