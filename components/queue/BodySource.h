// Where the bytes of a transfer come from and go to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace qv::components {

class BodySource {
 public:
  // Puts what comes next into `room` and says how much that is; 0 at the end. Nothing when it
  // cannot be read.
  [[nodiscard]] virtual std::optional<std::size_t> Read(std::span<char> room) = 0;
  // Makes the next Read begin at `offset`, in bytes from the beginning.
  [[nodiscard]] virtual bool Seek(std::uint64_t offset) = 0;

 protected:
  ~BodySource() = default;
};

class BodySink {
 public:
  // Takes all of `bytes`, or says false.
  [[nodiscard]] virtual bool Write(std::span<const char> bytes) = 0;

 protected:
  ~BodySink() = default;
};

}  // namespace qv::components
