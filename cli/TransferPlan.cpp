#include "TransferPlan.h"

#include <unordered_set>

namespace qv {

std::vector<FileTransfer> WithoutDoubles(std::vector<FileTransfer> files,
                                         std::string FileTransfer::*source,
                                         std::string FileTransfer::*place, TransferReport& report) {
  std::unordered_set<std::string> taken;
  std::erase_if(files, [&](const FileTransfer& file) {
    if (taken.insert(file.*place).second) return false;
    report.Fail(file.*source, "would replace a file before it, and is left out");
    return true;
  });
  return files;
}

}  // namespace qv
