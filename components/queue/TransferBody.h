// The ends of a transfer: where its bytes come from, where they go, and who is told about its
// progress.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace qv::components {

class BodySource {
 public:
  // Puts the next bytes into `room` and returns their number, 0 at the end. Returns nothing if they
  // cannot be read.
  [[nodiscard]] virtual std::optional<std::size_t> Read(std::span<char> room) = 0;
  // Makes the next Read start `offset` bytes after the beginning. Returns false if that is
  // impossible.
  [[nodiscard]] virtual bool Seek(std::uint64_t offset) = 0;

 protected:
  ~BodySource() = default;
};

class BodySink {
 public:
  // Returns false unless it took all of `bytes`.
  [[nodiscard]] virtual bool Write(std::span<const char> bytes) = 0;

 protected:
  ~BodySink() = default;
};

// Is told how much of the current file has been moved. Returning false stops the transfer.
class TransferMeter {
 public:
  // In bytes; `total` is 0 while it is unknown. Called at any rate.
  virtual bool Moved(std::uint64_t done, std::uint64_t total) = 0;

 protected:
  ~TransferMeter() = default;
};

}  // namespace qv::components
