#include "PartFile.h"

#include <utility>

namespace qv::storage {

PartFile::PartFile(std::string part, platform::Create how)
    : path_(std::move(part)), file_(path_, how), owns_part_(file_.IsOpen()) {}

PartFile::PartFile(std::string part, OutputFile file)
    : path_(std::move(part)), file_(std::move(file)), owns_part_(file_.IsOpen()) {}

PartFile PartFile::Resume(std::string part, std::uint64_t size) {
  OutputFile file = OutputFile::Append(part, size);
  return PartFile(std::move(part), std::move(file));
}

PartFile::PartFile(PartFile&& other) noexcept
    : path_(std::move(other.path_)),
      file_(std::move(other.file_)),
      owns_part_(std::exchange(other.owns_part_, false)) {}

PartFile& PartFile::operator=(PartFile&& other) noexcept {
  std::swap(path_, other.path_);
  std::swap(file_, other.file_);
  std::swap(owns_part_, other.owns_part_);
  return *this;
}

bool PartFile::MoveTo(const std::string& place) {
  if (!owns_part_ || !platform::ReplaceByRename(path_, place)) return false;
  owns_part_ = false;
  return true;
}

void PartFile::Remove() {
  if (!owns_part_) return;
  file_ = {};  // some systems remove no file that is open
  platform::RemoveFile(path_);
}

}  // namespace qv::storage
