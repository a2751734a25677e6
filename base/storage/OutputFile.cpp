#include "OutputFile.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace qv::storage {

OutputFile::OutputFile(const std::string& path, platform::Create how)
    : file_(platform::CreatePrivateFile(path, how)) {}

OutputFile OutputFile::Append(const std::string& path, std::uint64_t size) {
  OutputFile output;
  if (platform::TypeOf(path) != std::filesystem::file_type::regular) return output;
  std::error_code error;
  if (std::filesystem::file_size(platform::PathFromNarrow(path), error) != size) return output;
  platform::FilePtr file(platform::OpenFile(path, platform::Opening::kChange));
  if (file == nullptr || !platform::IsPrivate(file.get())) return output;
  if (std::fseek(file.get(), 0, SEEK_END) == 0) output.file_ = std::move(file);
  return output;
}

bool OutputFile::Write(const void* bytes, std::size_t count) {
  if (file_ == nullptr) return false;
  return count == 0 || std::fwrite(bytes, 1, count, file_.get()) == count;
}

bool OutputFile::Close(Flush flush) {
  if (file_ == nullptr) return false;
  const bool is_flushed = flush == Flush::kNo || platform::FlushToDisk(file_.get());
  const bool is_written = is_flushed && std::ferror(file_.get()) == 0;
  return std::fclose(file_.release()) == 0 && is_written;
}

}  // namespace qv::storage
