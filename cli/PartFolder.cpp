#include "PartFolder.h"

#include <fmt/format.h>

#include <fstream>
#include <random>
#include <system_error>
#include <utility>

namespace qv {
namespace {

namespace fs = std::filesystem;

std::string NewName() {
  std::random_device random;
  return fmt::format(".qvcall-{:08x}{:08x}", random(), random());
}

// The transport makes files that only their owner reads.
fs::perms PermissionsOfNewFiles(const std::string& file) {
  std::error_code error;
  const bool made = std::ofstream(file).good();
  const fs::file_status status = fs::status(file, error);
  fs::remove(file, error);
  return made ? status.permissions() : fs::perms::unknown;
}

}  // namespace

PartFolder::PartFolder(const fs::path& folder)
    : folder_(folder / NewName()), file_((folder_ / "part").string()) {}

bool PartFolder::Make() {
  const std::lock_guard lock(mutex_);
  std::error_code error;
  if (is_over_ || file_.size() > kLongestLocalPath) return false;
  is_made_ = fs::create_directory(folder_, error);
  if (is_made_) usual_ = PermissionsOfNewFiles(file_);
  return is_made_;
}

std::string PartFolder::MoveTo(const fs::path& place) const {
  std::error_code error;
  if (usual_ != fs::perms::unknown) fs::permissions(file_, usual_, error);
  fs::rename(file_, place, error);
  return error ? error.message() : std::string();
}

void PartFolder::Remove() {
  const std::lock_guard lock(mutex_);
  is_over_ = true;
  // What is made in the folder while it is emptied keeps it alive; that happens once at most.
  for (int attempt = 0; is_made_ && attempt < 8; ++attempt) {
    std::error_code error;
    fs::remove_all(folder_, error);
    is_made_ = static_cast<bool>(error);
  }
}

}  // namespace qv
