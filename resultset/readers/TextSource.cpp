#include "TextSource.h"

#include <filesystem>
#include <string>
#include <system_error>

#include "base/platform/Platform.h"

namespace qv {

TextSource::TextSource(const char* path)
    : descriptor_(path != nullptr ? platform::OpenDescriptor(path) : -1) {
  if (descriptor_ < 0) return;
  std::error_code error;
  size_ = std::filesystem::file_size(platform::PathFromNarrow(path), error);
  is_readable_ = !error;
}

TextSource::~TextSource() {
  if (descriptor_ >= 0) platform::CloseDescriptor(descriptor_);
}

std::optional<std::size_t> TextSource::Read(std::uint64_t offset, char* to,
                                            std::size_t count) const {
  if (descriptor_ >= 0) return platform::ReadAt(descriptor_, offset, to, count);
  if (offset > bytes_.size()) return 0;
  return bytes_.substr(static_cast<std::size_t>(offset)).copy(to, count);
}

}  // namespace qv
