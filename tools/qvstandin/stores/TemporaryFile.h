// A file on its way into a store.
#pragma once

#include <cstdint>
#include <string>

#include "base/platform/Folder.h"
#include "tools/qvstandin/common/ByteSink.h"

namespace qv::standin {

// Has a name of its own in a folder, and is removed with this object unless it was moved away.
// Nothing is made before it is written to, here or by whoever is given its path.
class TemporaryFile : public ByteSink {
 public:
  // The name ends with a separator.
  explicit TemporaryFile(const std::string& folder);
  ~TemporaryFile() override;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }
  // Whether the disk can take so many bytes and have some left for everything else.
  [[nodiscard]] bool HasRoomFor(std::uint64_t bytes) const { return bytes <= room_; }

  bool Write(std::string_view bytes) override;
  bool Finish() override;

 private:
  [[nodiscard]] bool Open();

  const std::string path_;
  std::uint64_t room_;
  platform::FilePtr file_;
};

}  // namespace qv::standin
