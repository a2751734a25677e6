// A file as it is sent.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "Frame.h"
#include "base/platform/Folder.h"

namespace qv::wire {

// Its length is fixed when it is opened.
class OutgoingFile {
 public:
  // Nothing when there is no regular file at `path` that can be read.
  [[nodiscard]] static std::optional<OutgoingFile> Open(const std::string& path);
  // An opened one; it stands at its beginning.
  explicit OutgoingFile(platform::OpenedFile opened)
      : file_(std::move(opened.file)), length_(opened.size) {}

  [[nodiscard]] std::uint64_t Length() const { return length_; }
  // Fills `bytes` with what comes next. False when there is less.
  [[nodiscard]] bool Read(WritableBytes bytes);

 private:
  platform::FilePtr file_;
  std::uint64_t length_;
};

}  // namespace qv::wire
