// Which files a command moves. What a plan leaves out, it tells the report.
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
  std::uint64_t bytes;  // as far as is known
};

// What a plan must know of the place that files are sent to.
struct UploadTarget {
  std::string (*join)(std::string_view folder, std::string_view name);
  std::size_t longest_path;
  std::size_t longest_local_path;
  // Makes a folder for what is in a local one. False when that failed and the report knows.
  std::function<bool(const std::string& local, const std::string& folder)> make_folder;
};

// The files that are sent to a folder of such a place; folders and what is in them if `recursive`.
[[nodiscard]] std::vector<FileTransfer> PlanUpload(const UploadTarget& target,
                                                   const std::vector<std::string>& local,
                                                   const std::string& folder, bool recursive,
                                                   TransferReport& report);

// The files that a command sends. The folders that they go to are made on the server, where they
// are not there yet.
[[nodiscard]] std::vector<FileTransfer> PlanUpload(const PutFiles& command, TransferReport& report);

// The files that a command fetches. The local folders that they go to are made. Whatever the server
// calls its files and folders, none goes to a place outside the folder that the command names, nor
// through a link that stands in it.
[[nodiscard]] std::vector<FileTransfer> PlanDownload(const GetFiles& command,
                                                     TransferReport& report);

// Leaves out each file whose place one before it takes already: the last would win unseen.
[[nodiscard]] std::vector<FileTransfer> WithoutDoubles(std::vector<FileTransfer> files,
                                                       std::string FileTransfer::*source,
                                                       std::string FileTransfer::*place,
                                                       TransferReport& report);

}  // namespace qv::tool
