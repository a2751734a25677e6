#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// Show, move, copy and remove what is in the server's store. Each gives the exit status; `err`
// hears what went wrong.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ShowPath& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const MovePath& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const CopyFile& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const RemoveFiles& command,
                      std::ostream& out, std::ostream& err);

// List, make and remove folders of the server's store. Each gives the exit status; `err` hears what
// went wrong.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ListFolder& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const MakeFolders& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const RemoveFolders& command,
                      std::ostream& out, std::ostream& err);

// Send files to the server's store, and fetch them. A file that fails does not keep the next from
// being moved, and leaves what was there under its name as it was. Each gives the exit status;
// `err` hears how it goes.
[[nodiscard]] int Run(const ConnectionOptions& connection, const PutFiles& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const GetFiles& command,
                      std::ostream& out, std::ostream& err);

// Send, fetch and show files that the server keeps under a number and a name. What was moved is
// compared by its checksum, where the server has one; a local file that was there before only gives
// way to a good one. Each gives the exit status; `err` hears how it goes.
[[nodiscard]] int Run(const ConnectionOptions& connection, const PutById& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const GetById& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const ShowById& command,
                      std::ostream& out, std::ostream& err);

}  // namespace qv::tool
