// The local file of an upload.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "BodySource.h"
#include "base/platform/Folder.h"

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

}  // namespace qv::components
