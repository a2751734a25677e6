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

// Use from one thread. The size is fixed when the file is opened; bytes that are appended later are
// ignored.
class LocalSource final : public BodySource {
 public:
  // Returns nothing if `path` is not a readable regular file. Links are followed.
  [[nodiscard]] static std::optional<LocalSource> Open(const std::string& path);

  [[nodiscard]] std::uint64_t Size() const { return size_; }
  // A text that changes if the file is written to.
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

// Written to a part with a unique name beside its final place. When it is complete, it is flushed
// to the disk and moved there. Use from one thread. The destructor removes a part that was not
// paused.
class LocalTarget final : public BodySink {
 public:
  // Starts a part for the file at `path` and creates missing folders above it. Returns nothing if
  // that fails, or if `path` exists and is not a regular file.
  [[nodiscard]] static std::optional<LocalTarget> Create(const std::string& path);
  // Resumes a part at its end. Returns nothing if it is no longer `size` bytes long.
  [[nodiscard]] static std::optional<LocalTarget> Continue(const std::string& path,
                                                           const std::string& part,
                                                           std::uint64_t size);

  [[nodiscard]] const std::string& Part() const { return part_.Path(); }
  // Size of the part in bytes.
  [[nodiscard]] std::uint64_t Size() const { return size_; }
  // Returns the last bytes of the part, at most `most`. Call it before the first Write. Returns
  // nothing if they cannot be read.
  [[nodiscard]] std::optional<std::string> Tail(std::size_t most) const;
  [[nodiscard]] bool Write(std::span<const char> bytes) override;

  // Flushes the part and moves it to its place. Returns false if any byte could not be written.
  [[nodiscard]] bool Finish();
  // Keeps the part, so that Continue can resume it. Returns false likewise.
  [[nodiscard]] bool Pause();

 private:
  LocalTarget(std::string path, storage::PartFile part, std::uint64_t size);

  std::string path_;
  storage::PartFile part_;
  std::uint64_t size_;
};

}  // namespace qv::components
