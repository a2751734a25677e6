#include "PartFolder.h"

#include <fmt/format.h>

#include <fstream>
#include <random>
#include <system_error>
#include <utility>

namespace qv {
namespace {

namespace fs = std::filesystem;

fs::path NewFolderIn(const fs::path& folder) {
  std::random_device random;
  for (int attempt = 0; attempt < 8; ++attempt) {
    const fs::path made = folder / fmt::format(".qvcall-{:08x}", random());
    std::error_code error;
    if (fs::create_directory(made, error)) return made;
  }
  return {};
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

std::unique_ptr<PartFolder> PartFolder::Make(const fs::path& folder) {
  const fs::path made = NewFolderIn(folder);
  if (made.empty()) return nullptr;
  std::unique_ptr<PartFolder> parts(new PartFolder(made));
  return parts->File().size() <= kLongestLocalPath ? std::move(parts) : nullptr;
}

PartFolder::PartFolder(fs::path folder)
    : folder_(std::move(folder)),
      file_((folder_ / "part").string()),
      usual_(PermissionsOfNewFiles(file_)) {}

std::string PartFolder::MoveTo(const fs::path& place) const {
  std::error_code error;
  if (usual_ != fs::perms::unknown) fs::permissions(file_, usual_, error);
  fs::rename(file_, place, error);
  return error ? error.message() : std::string();
}

void PartFolder::Remove() const {
  // What is made in the folder while it is emptied keeps it alive; that happens once at most.
  for (int attempt = 0; attempt < 8; ++attempt) {
    std::error_code error;
    fs::remove_all(folder_, error);
    if (!error) return;
  }
}

}  // namespace qv
