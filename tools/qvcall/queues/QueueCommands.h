#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/qvcall/files/TransferPlan.h"
#include "tools/qvcall/options/CommandLine.h"
#include "tools/qvcall/options/QueueOptions.h"

namespace qv::tool {

// Transfers files between this machine and a file server or a cloud store in one queue. Failures
// are printed to `err` and, if the connection names the platform's server, written to its log. The
// password may be read from `in`. Returns the exit status.
[[nodiscard]] int Run(const ConnectionOptions& connection, const QueueCommand& command,
                      std::istream& in, std::ostream& err);

// Returns the files that a command queues. Files that are left out are reported as failures.
[[nodiscard]] std::vector<FileTransfer> PlanQueue(const QueuePut& command, TransferReport& report);

// The local names are taken from the command, so the server cannot choose where files are written.
[[nodiscard]] std::vector<FileTransfer> PlanQueue(const QueueGet& command, TransferReport& report);

// Returns the path of the target. If `target` ends as a folder does, the name of `source` is added.
[[nodiscard]] std::string QueueTarget(const std::string& source, const std::string& target);

// Returns the password of a login: the first line of the file that the options name or of `in`, or
// what the user types on the terminal. Returns an empty text without a login, and nullopt, with the
// reason on `err`, if there is no password. Must be called before other threads are started,
// because it may ask on the terminal.
[[nodiscard]] std::optional<std::string> PasswordFor(const QueueHost& host, std::istream& in,
                                                     std::ostream& err);

}  // namespace qv::tool
