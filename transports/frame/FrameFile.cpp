#include "FrameFile.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "base/platform/Platform.h"

namespace qv::wire {

namespace {

// Beside `path`, so that taking the name is one step; not made from the file's own name, which may
// be as long as a name can be.
std::string TemporaryBeside(const std::string& path) {
  return platform::FolderOf(path) + "~" + platform::NewGuid() + ".part";
}

}  // namespace

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

IncomingFile::IncomingFile(std::string path)
    : path_(std::move(path)),
      temporary_(TemporaryBeside(path_)),
      file_(platform::CreatePrivateFile(temporary_, platform::Create::kNew)) {}

IncomingFile::~IncomingFile() {
  if (file_ == nullptr) return;
  Close();
  platform::RemoveFile(temporary_);
}

bool IncomingFile::Write(Bytes bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), file_) == bytes.size();
}

bool IncomingFile::Commit() {
  // A full disk may only show when the last bytes leave the buffer.
  if (Close() && platform::ReplaceByRename(temporary_, path_)) return true;
  platform::RemoveFile(temporary_);
  return false;
}

bool IncomingFile::Close() { return std::fclose(std::exchange(file_, nullptr)) == 0; }

}  // namespace qv::wire
