// A file on its way into a store.
#pragma once

#include <cstdint>
#include <string>

#include "base/storage/OutputFile.h"
#include "tools/qvstandin/common/ByteSink.h"

namespace qv::standin {

// Has a unique name in a folder. The destructor removes the file unless it was moved away. The file
// is not created before something is written, through this object or to its path.
class TemporaryFile : public ByteSink {
 public:
  // `folder` ends with a separator.
  explicit TemporaryFile(const std::string& folder);
  ~TemporaryFile() override;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }
  // Returns whether the disk has room for this many bytes and a reserve.
  [[nodiscard]] bool HasRoomFor(std::uint64_t bytes) const { return bytes <= room_; }

  bool Write(std::string_view bytes) override;
  // Flushes the file to the disk, since the store promises its clients to keep it.
  bool Finish() override;

 private:
  [[nodiscard]] bool Open();

  const std::string path_;
  std::uint64_t room_;
  storage::OutputFile file_;
};

}  // namespace qv::standin
