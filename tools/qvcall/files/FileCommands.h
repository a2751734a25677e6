#pragma once

#include <iosfwd>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {

// The functions below run one command each and return the exit status. Failures and remarks are
// printed to `err`.

// Show, move, copy and remove files in the server's store.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ShowPath& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const MovePath& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const CopyFile& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const RemoveFiles& command,
                      std::ostream& out, std::ostream& err);

// List, create and remove folders in the server's store.
[[nodiscard]] int Run(const ConnectionOptions& connection, const ListFolder& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const MakeFolders& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const RemoveFolders& command,
                      std::ostream& out, std::ostream& err);

// Send files to the server's store, and fetch files from it. After a file has failed, the remaining
// files are still transferred. A file that failed leaves an existing file of its name unchanged.
[[nodiscard]] int Run(const ConnectionOptions& connection, const PutFiles& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const GetFiles& command,
                      std::ostream& out, std::ostream& err);

// Send, fetch and show files that the server stores under a number and a name. Transferred files
// are compared with the server's checksum, if there is one. An existing local file is not
// replaced by a file that failed the comparison.
[[nodiscard]] int Run(const ConnectionOptions& connection, const PutById& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const GetById& command,
                      std::ostream& out, std::ostream& err);
[[nodiscard]] int Run(const ConnectionOptions& connection, const ShowById& command,
                      std::ostream& out, std::ostream& err);

}  // namespace qv::tool
