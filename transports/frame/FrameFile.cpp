#include "FrameFile.h"

#include <filesystem>
#include <system_error>

#include "base/platform/Platform.h"

namespace qv::wire {

std::optional<OutgoingFile> OutgoingFile::Open(const std::string& path) {
  std::error_code error;
  // Also keeps the sender from waiting for ever on a pipe.
  const std::filesystem::path place = platform::PathFromNarrow(path);
  if (!std::filesystem::is_regular_file(place, error)) return std::nullopt;
  const std::uintmax_t length = std::filesystem::file_size(place, error);
  if (error || length > kMaxFile) return std::nullopt;
  platform::FilePtr file(platform::OpenFile(path, platform::Opening::kRead));
  if (file == nullptr) return std::nullopt;
  return OutgoingFile({std::move(file), length});
}

bool OutgoingFile::Read(WritableBytes bytes) {
  return std::fread(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size();
}

}  // namespace qv::wire
