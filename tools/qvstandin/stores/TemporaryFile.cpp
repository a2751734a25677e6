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
  file_ = {};  // some systems remove no file that is open
  platform::RemoveFile(path_);
}

bool TemporaryFile::Open() {
  if (!file_.IsOpen()) file_ = storage::OutputFile(path_, platform::Create::kNew);
  return file_.IsOpen();
}

bool TemporaryFile::Write(std::string_view bytes) {
  if (bytes.size() > room_ || !Open()) return false;
  room_ -= bytes.size();
  return file_.Write(bytes);
}

bool TemporaryFile::Finish() { return Open() && file_.Close(storage::Flush::kYes); }

}  // namespace qv::standin
