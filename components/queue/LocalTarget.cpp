#include "LocalTarget.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/platform/Platform.h"

namespace qv::components {

namespace {

namespace fs = std::filesystem;

// Whether a file can be given this path: there is none, or it is replaced.
bool IsFree(const fs::path& path) {
  std::error_code error;
  const fs::file_type type = fs::status(path, error).type();
  return !path.filename().empty() &&
         (type == fs::file_type::not_found || type == fs::file_type::regular);
}

bool MakeFolder(const fs::path& folder) {
  return folder.empty() || platform::CreatePrivateFolder(folder.string());
}

}  // namespace

LocalTarget::LocalTarget(std::string path, std::string part, std::uint64_t size,
                         platform::FilePtr file)
    : path_(std::move(path)), part_(std::move(part)), size_(size), file_(std::move(file)) {}

std::optional<LocalTarget> LocalTarget::Create(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  if (!IsFree(path) || !MakeFolder(folder)) return std::nullopt;
  // Not made from the file's own name, which may be as long as a name can be.
  std::string part = (folder / ("~" + platform::NewGuid() + ".part")).string();
  platform::FilePtr file(platform::CreatePrivateFile(part, platform::Create::kNew));
  if (file == nullptr) return std::nullopt;
  return LocalTarget(path, std::move(part), 0, std::move(file));
}

std::optional<LocalTarget> LocalTarget::Continue(const std::string& path, const std::string& part,
                                                 std::uint64_t size) {
  std::error_code error;
  const bool is_file = fs::is_regular_file(fs::symlink_status(part, error));
  if (!is_file || fs::file_size(part, error) != size || error) return std::nullopt;
  platform::FilePtr file(platform::OpenFile(part, platform::Opening::kChange));
  if (file == nullptr || !platform::IsPrivate(file.get())) return std::nullopt;
  if (std::fseek(file.get(), 0, SEEK_END) != 0) return std::nullopt;
  return LocalTarget(path, part, size, std::move(file));
}

std::optional<std::string> LocalTarget::Tail(std::size_t most) {
  std::string tail(static_cast<std::size_t>(std::min<std::uint64_t>(most, size_)), '\0');
  // One that was just begun cannot be read.
  if (tail.empty()) return tail;
  std::FILE* const file = file_.get();
  if (file == nullptr || std::fseek(file, -static_cast<long>(tail.size()), SEEK_END) != 0) {
    return std::nullopt;
  }
  const bool is_read = std::fread(tail.data(), 1, tail.size(), file) == tail.size();
  if (!is_read || std::fseek(file, 0, SEEK_END) != 0) return std::nullopt;
  return tail;
}

bool LocalTarget::Write(std::span<const char> bytes) {
  if (file_ == nullptr) return false;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) return false;
  size_ += bytes.size();
  return true;
}

bool LocalTarget::Finish() {
  const bool is_written = file_ != nullptr && platform::FlushToDisk(file_.get());
  if (is_written && Pause() && platform::ReplaceByRename(part_, path_)) return true;
  Discard();
  return false;
}

// A full disk may only show when the last bytes leave the buffer.
bool LocalTarget::Pause() { return file_ != nullptr && std::fclose(file_.release()) == 0; }

void LocalTarget::Discard() {
  file_.reset();
  platform::RemoveFile(part_);
}

}  // namespace qv::components
