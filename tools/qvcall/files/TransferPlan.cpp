#include "TransferPlan.h"

#include <unordered_set>

#include "tools/qvcall/system/LocalPath.h"

namespace qv::tool {

std::vector<FileTransfer> WithoutDoubles(std::vector<FileTransfer> files,
                                         std::string FileTransfer::*source,
                                         std::string FileTransfer::*place, TransferReport& report) {
  std::unordered_set<std::string> taken;
  std::erase_if(files, [&](const FileTransfer& file) {
    const std::string& path = file.*place;
    if (taken.insert(place == &FileTransfer::local ? PathKey(path) : path).second) return false;
    report.Fail(file.*source, "would replace a file before it, and is left out");
    return true;
  });
  return files;
}

}  // namespace qv::tool
