#include "TemporaryFile.h"

#include <filesystem>
#include <system_error>

#include "base/platform/Platform.h"

namespace qv::standin {

namespace {

// Space that is left free for the databases.
constexpr std::uint64_t kReserve = 64ULL << 20;

std::uint64_t RoomIn(const std::string& folder) {
  std::error_code error;
  const std::uintmax_t free =
      std::filesystem::space(platform::PathFromNarrow(folder), error).available;
  return error || free < kReserve ? 0 : free - kReserve;
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& folder)
    : path_(folder + platform::NewGuid() + ".incoming"), room_(RoomIn(folder)) {}

TemporaryFile::~TemporaryFile() {
  file_.reset();
  platform::RemoveFile(path_);
}

bool TemporaryFile::Open() {
  if (file_ == nullptr) {
    file_.reset(platform::CreatePrivateFile(path_, platform::Create::kNew));
  }
  return file_ != nullptr;
}

bool TemporaryFile::Write(std::string_view bytes) {
  if (bytes.size() > room_ || !Open()) return false;
  room_ -= bytes.size();
  return std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size();
}

bool TemporaryFile::Finish() { return Open() && std::fclose(file_.release()) == 0; }

}  // namespace qv::standin
