// Decides which files a command transfers. Files that are left out are reported as failures.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "TransferReport.h"
#include "tools/qvcall/options/StoreCommands.h"

namespace qv::tool {

struct FileTransfer {
  std::string local;
  std::string server;
  std::uint64_t bytes;  // 0 if unknown
};

// The rules of the place that files are sent to.
struct UploadTarget {
  std::string (*join)(std::string_view folder, std::string_view name);
  std::size_t longest_path;
  std::size_t longest_local_path;
  // Creates a folder for the contents of a local one. Returns false after a failure, which it has
  // reported.
  std::function<bool(const std::string& local, const std::string& folder)> make_folder;
};

// Returns the files to send to a folder of such a place; folders with their contents if
// `recursive`.
[[nodiscard]] std::vector<FileTransfer> PlanUpload(const UploadTarget& target,
                                                   const std::vector<std::string>& local,
                                                   const std::string& folder, bool recursive,
                                                   TransferReport& report);

// Returns the files that a command sends. Missing target folders are created on the server.
[[nodiscard]] std::vector<FileTransfer> PlanUpload(const PutFiles& command, TransferReport& report);

// Returns the files that a command fetches, and creates their local folders. Whatever names the
// server sends, no file is placed outside the folder that the command names, nor reached through a
// link inside it.
[[nodiscard]] std::vector<FileTransfer> PlanDownload(const GetFiles& command,
                                                     TransferReport& report);

// Leaves out each file whose place an earlier one takes already: it would silently replace that
// one.
[[nodiscard]] std::vector<FileTransfer> WithoutDoubles(std::vector<FileTransfer> files,
                                                       std::string FileTransfer::*source,
                                                       std::string FileTransfer::*place,
                                                       TransferReport& report);

}  // namespace qv::tool
