#include "PartFolder.h"

#include <fmt/format.h>

#include <fstream>
#include <random>

#include "tools/qvcall/system/LocalFiles.h"

namespace qv::tool {
namespace {

std::string NewName() {
  std::random_device random;
  return fmt::format(".qvcall-{:08x}{:08x}", random(), random());
}

}  // namespace

PartFolder::PartFolder(const std::string& folder)
    : folder_(JoinLocal(folder, NewName())),
      file_(JoinLocal(folder_, "part")),
      usual_(JoinLocal(folder_, "usual")) {}

bool PartFolder::Make() {
  const std::lock_guard lock(mutex_);
  if (is_over_ || file_.size() > kLongestLocalPath) return false;
  is_made_ = MakeLocalFolder(folder_);
  if (is_made_) std::ofstream{usual_};
  return is_made_;
}

// The transport creates files that only their owner can read.
std::string PartFolder::MoveTo(const std::string& place) const {
  return MoveLocalFile(file_, usual_, place);
}

void PartFolder::Remove() {
  const std::lock_guard lock(mutex_);
  is_over_ = true;
  // A file that is created while the folder is emptied makes the removal fail; that happens at most
  // once.
  for (int attempt = 0; is_made_ && attempt < 8; ++attempt) {
    is_made_ = !RemoveLocalFolder(folder_);
  }
}

}  // namespace qv::tool
