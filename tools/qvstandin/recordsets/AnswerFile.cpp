#include "AnswerFile.h"

#include <utility>

#include "base/platform/Platform.h"

namespace qv::standin {

AnswerFile::AnswerFile(std::string folder, std::uint64_t memory_limit, std::uint64_t size_limit)
    : folder_(std::move(folder)), memory_limit_(memory_limit), size_limit_(size_limit) {}

AnswerFile::~AnswerFile() {
  file_.reset();
  if (!path_.empty()) platform::RemoveFile(path_);
}

bool AnswerFile::Write(std::string_view bytes) {
  if (bytes.size() > size_limit_ - size_) return false;
  size_ += bytes.size();
  if (path_.empty() && size_ <= memory_limit_) {
    bytes_ += bytes;
    return true;
  }
  if (path_.empty() && !MoveToDisk()) return false;
  return file_ != nullptr &&
         std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size();
}

bool AnswerFile::MoveToDisk() {
  const std::string path = folder_ + platform::NewGuid() + kExtension;
  file_.reset(platform::CreatePrivateFile(path, platform::Create::kNew));
  if (file_ == nullptr) return false;
  path_ = path;
  const std::string kept = std::exchange(bytes_, {});
  return std::fwrite(kept.data(), 1, kept.size(), file_.get()) == kept.size();
}

bool AnswerFile::Finish() { return file_ == nullptr || std::fclose(file_.release()) == 0; }

}  // namespace qv::standin
