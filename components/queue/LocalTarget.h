// The local file of a download.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "BodySource.h"
#include "base/platform/Folder.h"

namespace qv::components {

// Written beside its final place, under a name that nobody else has, and given its own name when it
// is whole. One thread. Destruction leaves the part where it is.
class LocalTarget final : public BodySink {
 public:
  // Begins a part for the file at `path`, and makes the folders above it that are missing. Nothing
  // when that cannot be, or something that is no ordinary file stands there.
  [[nodiscard]] static std::optional<LocalTarget> Create(const std::string& path);
  // Goes on with a part behind its end. Nothing when it is not `size` bytes long any more.
  [[nodiscard]] static std::optional<LocalTarget> Continue(const std::string& path,
                                                           const std::string& part,
                                                           std::uint64_t size);

  [[nodiscard]] const std::string& Part() const { return part_; }
  // Of the part, in bytes.
  [[nodiscard]] std::uint64_t Size() const { return size_; }
  // What it ends with, `most` bytes of it at most. Nothing when that cannot be read.
  [[nodiscard]] std::optional<std::string> Tail(std::size_t most);
  [[nodiscard]] bool Write(std::span<const char> bytes) override;

  // Each ends the writing. False when something could not be written after all; Finish removes the
  // part then.
  [[nodiscard]] bool Finish();
  [[nodiscard]] bool Pause();
  void Discard();

 private:
  LocalTarget(std::string path, std::string part, std::uint64_t size, platform::FilePtr file);

  std::string path_;
  std::string part_;
  std::uint64_t size_;
  platform::FilePtr file_;
};

}  // namespace qv::components
