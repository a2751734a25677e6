// The local file of a transfer: the source of an upload, the target of a download.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "TransferBody.h"
#include "base/platform/Folder.h"
#include "base/storage/PartFile.h"

namespace qv::components {

// One thread. Its size is what it was when it was opened; what is written behind that meanwhile is
// not part of it.
class LocalSource final : public BodySource {
 public:
  // Nothing when there is no ordinary file at `path` that can be read; links to one are followed.
  [[nodiscard]] static std::optional<LocalSource> Open(const std::string& path);

  [[nodiscard]] std::uint64_t Size() const { return size_; }
  // Differs when the file was written to between two openings.
  [[nodiscard]] const std::string& State() const { return state_; }

  [[nodiscard]] std::optional<std::size_t> Read(std::span<char> room) override;
  [[nodiscard]] bool Seek(std::uint64_t offset) override;

 private:
  LocalSource(platform::FilePtr file, std::uint64_t size, std::string state)
      : file_(std::move(file)), size_(size), state_(std::move(state)) {}

  platform::FilePtr file_;
  std::uint64_t size_;
  std::uint64_t position_ = 0;
  std::string state_;
};

// Written beside its final place, under a name that nobody else has, and given its own name when it
// is whole and flushed to the disk. One thread. Destruction removes a part that was not paused.
class LocalTarget final : public BodySink {
 public:
  // Begins a part for the file at `path`, and makes the folders above it that are missing. Nothing
  // when that cannot be, or something that is no ordinary file stands there.
  [[nodiscard]] static std::optional<LocalTarget> Create(const std::string& path);
  // Goes on with a part behind its end. Nothing when it is not `size` bytes long any more.
  [[nodiscard]] static std::optional<LocalTarget> Continue(const std::string& path,
                                                           const std::string& part,
                                                           std::uint64_t size);

  [[nodiscard]] const std::string& Part() const { return part_.Path(); }
  // Of the part, in bytes.
  [[nodiscard]] std::uint64_t Size() const { return size_; }
  // What the part ends with, `most` bytes of it at most; to be asked before the first Write.
  // Nothing when that cannot be read.
  [[nodiscard]] std::optional<std::string> Tail(std::size_t most) const;
  [[nodiscard]] bool Write(std::span<const char> bytes) override;

  // Each ends the writing. False when something could not be written after all.
  [[nodiscard]] bool Finish();
  // Keeps the part, which Continue opens again.
  [[nodiscard]] bool Pause();

 private:
  LocalTarget(std::string path, storage::PartFile part, std::uint64_t size);

  std::string path_;
  storage::PartFile part_;
  std::uint64_t size_;
};

}  // namespace qv::components
