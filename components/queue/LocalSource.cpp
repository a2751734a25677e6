#include "LocalSource.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>

#include "base/platform/Platform.h"

namespace qv::components {

std::optional<LocalSource> LocalSource::Open(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  // Also keeps the run from waiting for ever on a pipe.
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
  // A file that was cut meanwhile is not the one that was announced.
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

}  // namespace qv::components
