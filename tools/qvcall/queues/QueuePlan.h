// Which pairs of files a command queues. What a plan leaves out, it tells the report.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/qvcall/files/TransferPlan.h"
#include "tools/qvcall/options/QueueOptions.h"

namespace qv::tool {

[[nodiscard]] std::vector<FileTransfer> PlanQueue(const QueuePut& command, TransferReport& report);

// A server that is asked for one file cannot have another place written here.
[[nodiscard]] std::vector<FileTransfer> PlanQueue(const QueueGet& command, TransferReport& report);

// Where a file goes whose target may be written as that of a folder, with a "/" at its end.
[[nodiscard]] std::string QueueTarget(const std::string& source, const std::string& target);

}  // namespace qv::tool
