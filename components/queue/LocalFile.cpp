#include "LocalFile.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

#include "base/platform/Platform.h"
#include "base/storage/FileNames.h"

namespace qv::components {

namespace {

namespace fs = std::filesystem;

// Returns true if a file can be put at this path: nothing is there, or a regular file that will be
// replaced.
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

std::optional<LocalSource> LocalSource::Open(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  // This also keeps the run from waiting forever on a pipe.
  if (!fs::is_regular_file(path, error)) return std::nullopt;
  const std::uintmax_t size = fs::file_size(path, error);
  if (error || size > std::uintmax_t{std::numeric_limits<std::int64_t>::max()}) return std::nullopt;
  const fs::file_time_type written = fs::last_write_time(path, error);
  if (error) return std::nullopt;
  platform::FilePtr file(platform::OpenFile(path, platform::Opening::kRead));
  if (file == nullptr) return std::nullopt;
  std::string state =
      std::to_string(size) + '-' + std::to_string(written.time_since_epoch().count());
  return LocalSource(std::move(file), size, std::move(state));
}

std::optional<std::size_t> LocalSource::Read(std::span<char> room) {
  const std::uint64_t left = size_ - position_;
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(room.size(), left));
  const std::size_t read = std::fread(room.data(), 1, wanted, file_.get());
  // If the file was truncated in the meantime, it is shorter than announced.
  if (read == 0 && wanted != 0) return std::nullopt;
  position_ += read;
  return read;
}

bool LocalSource::Seek(std::uint64_t offset) {
  if (offset > size_) return false;
  if (std::fseek(file_.get(), static_cast<long>(offset), SEEK_SET) != 0) return false;
  position_ = offset;
  return true;
}

LocalTarget::LocalTarget(std::string path, storage::PartFile part, std::uint64_t size)
    : path_(std::move(path)), part_(std::move(part)), size_(size) {}

std::optional<LocalTarget> LocalTarget::Create(const std::string& path) {
  if (!IsFree(path) || !MakeFolder(fs::path(path).parent_path())) return std::nullopt;
  storage::PartFile part(storage::PartBeside(path));
  if (!part.IsOpen()) return std::nullopt;
  return LocalTarget(path, std::move(part), 0);
}

std::optional<LocalTarget> LocalTarget::Continue(const std::string& path, const std::string& part,
                                                 std::uint64_t size) {
  storage::PartFile resumed = storage::PartFile::Resume(part, size);
  if (!resumed.IsOpen()) return std::nullopt;
  return LocalTarget(path, std::move(resumed), size);
}

std::optional<std::string> LocalTarget::Tail(std::size_t most) const {
  std::string tail(static_cast<std::size_t>(std::min<std::uint64_t>(most, size_)), '\0');
  if (tail.empty()) return tail;
  const platform::FilePtr file(platform::OpenFile(Part(), platform::Opening::kRead));
  const auto start = static_cast<long>(size_ - tail.size());
  if (file == nullptr || std::fseek(file.get(), start, SEEK_SET) != 0) return std::nullopt;
  const bool is_read = std::fread(tail.data(), 1, tail.size(), file.get()) == tail.size();
  return is_read ? std::optional(tail) : std::nullopt;
}

bool LocalTarget::Write(std::span<const char> bytes) {
  if (!part_.Write(std::string_view(bytes.data(), bytes.size()))) return false;
  size_ += bytes.size();
  return true;
}

bool LocalTarget::Finish() { return part_.Finish(storage::Flush::kYes) && part_.MoveTo(path_); }

bool LocalTarget::Pause() {
  const bool is_written = part_.Finish(storage::Flush::kNo);
  if (is_written) part_.Keep();
  return is_written;
}

}  // namespace qv::components
