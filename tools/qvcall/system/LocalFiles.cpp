#include "LocalFiles.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "LocalPath.h"
#include "ServerPath.h"

namespace qv::tool {

namespace fs = std::filesystem;

LocalKind KindOf(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(PathFromNarrow(path), error);
  if (fs::is_regular_file(status)) return LocalKind::kFile;
  if (fs::is_directory(status)) return LocalKind::kFolder;
  return fs::exists(status) ? LocalKind::kOther : LocalKind::kNone;
}

bool IsLinkToFolder(const std::string& path) {
  return IsLink(PathFromNarrow(path)) && KindOf(path) == LocalKind::kFolder;
}

std::uint64_t SizeOf(const std::string& file) {
  std::error_code error;
  const std::uintmax_t bytes = fs::file_size(PathFromNarrow(file), error);
  return error ? 0 : bytes;
}

bool IsLocalName(std::string_view name) {
  return IsPlainName(name) && KeepsName(std::string(name));
}

std::string JoinLocal(const std::string& folder, std::string_view name) {
  return ShownPath(PathFromNarrow(folder) / PathFromNarrow(std::string(name)));
}

std::string LocalFolderOf(const std::string& path) {
  const fs::path folder = PathFromNarrow(path).parent_path();
  return folder.empty() ? "." : ShownPath(folder);
}

std::optional<std::string> LocalNameOf(const std::string& path) {
  std::error_code error;
  fs::path whole = fs::absolute(PathFromNarrow(path), error).lexically_normal();
  if (!whole.has_filename()) whole = whole.parent_path();
  return NarrowFromPath(whole.filename());
}

LocalEntries EntriesOf(const std::string& folder) {
  LocalEntries entries;
  std::error_code error;
  fs::directory_iterator at(PathFromNarrow(folder), error);
  for (const fs::directory_iterator end; !error && at != end; at.increment(error)) {
    if (auto path = NarrowFromPath(at->path())) {
      entries.paths.push_back(std::move(*path));
    } else {
      entries.nameless.push_back(ShownPath(at->path()));
    }
  }
  if (error) entries.error = error.message();
  std::sort(entries.paths.begin(), entries.paths.end());
  return entries;
}

bool MakeLocalFolder(const std::string& path) {
  std::error_code error;
  return fs::create_directory(PathFromNarrow(path), error);
}

void MakeLocalFolders(const std::string& path) {
  std::error_code ignored;
  fs::create_directories(PathFromNarrow(path), ignored);
}

bool RemoveLocalFolder(const std::string& path) {
  std::error_code error;
  fs::remove_all(PathFromNarrow(path), error);
  return !error;
}

std::string MoveLocalFile(const std::string& file, const std::string& like,
                          const std::string& place) {
  const fs::path from = PathFromNarrow(file);
  GiveRightsOf(PathFromNarrow(like), from);
  std::error_code error;
  fs::rename(from, PathFromNarrow(place), error);
  return error ? error.message() : std::string();
}

}  // namespace qv::tool
