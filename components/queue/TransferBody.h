// The bytes of a transfer: where they come from and go to, and who hears how far it has come.
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

// Hears how far the file that is being moved has come; false stops the transfer.
class TransferMeter {
 public:
  // In bytes; `total` is 0 while unknown. As often as the transfer likes.
  virtual bool Moved(std::uint64_t done, std::uint64_t total) = 0;

 protected:
  ~TransferMeter() = default;
};

}  // namespace qv::components
