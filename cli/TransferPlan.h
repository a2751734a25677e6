// Which files a command moves. What a plan leaves out, it tells the report.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "StoreCommands.h"
#include "TransferReport.h"

namespace qv {

struct FileTransfer {
  std::string local;
  std::string server;
  std::uint64_t bytes;  // as far as is known
};

// The files that a command sends. The folders that they go to are made on the server, where they
// are not there yet.
[[nodiscard]] std::vector<FileTransfer> PlanUpload(const PutFiles& command, TransferReport& report);

// The files that a command fetches. The local folders that they go to are made. Whatever the server
// calls its files and folders, none goes to a place outside the folder that the command names, nor
// through a link that stands in it.
[[nodiscard]] std::vector<FileTransfer> PlanDownload(const GetFiles& command,
                                                     TransferReport& report);

}  // namespace qv
