#include "LocalTarget.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/platform/Platform.h"
#include "base/storage/FileNames.h"

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
