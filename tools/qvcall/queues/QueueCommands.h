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

// Moves files between this machine and a file server or a cloud store, in one queue. What fails is
// told on `err`, and to the log of the platform's server when the connection names one. Gives the
// exit status. The password may come from `in`.
[[nodiscard]] int Run(const ConnectionOptions& connection, const QueueCommand& command,
                      std::istream& in, std::ostream& err);

[[nodiscard]] std::vector<FileTransfer> PlanQueue(const QueuePut& command, TransferReport& report);

// A server that is asked for one file cannot have another place written here.
[[nodiscard]] std::vector<FileTransfer> PlanQueue(const QueueGet& command, TransferReport& report);

// Where a file goes whose target may be written as that of a folder, with a "/" at its end.
[[nodiscard]] std::string QueueTarget(const std::string& source, const std::string& target);

// The password of a login: the first line of the file that the options name, or of `in`, or what
// the user types on the terminal; empty without a login. Nothing, with the reason on `err`, when it
// cannot be had. Where the terminal is asked, no other thread may be there yet.
[[nodiscard]] std::optional<std::string> PasswordFor(const QueueHost& host, std::istream& in,
                                                     std::ostream& err);

}  // namespace qv::tool
