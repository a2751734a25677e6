// The memory of one message, kept by its thread from call to call.
#pragma once

#include <cstdint>

#include "AutoBuf.h"

namespace qv {

// A block of zeros, whatever anybody wrote into the memory before: a transport of others may write
// anywhere in a block. Filling large blocks with zeros would take longer than a small call, so what
// a call has used is cleared, and the pages after that are given back to the system, which makes
// them zero. A thread keeps a few blocks, and frees them when it ends.
//
// Construct and destroy on one thread.
class KeptBlock {
 public:
  static constexpr std::uint32_t kLargest = 0x100000;

  // Throws std::bad_alloc, also for a size above kLargest.
  explicit KeptBlock(std::uint32_t size);
  ~KeptBlock();
  KeptBlock(const KeptBlock&) = delete;
  KeptBlock& operator=(const KeptBlock&) = delete;

  [[nodiscard]] ZeroBlock Zeros() const { return {memory_.start, size_}; }
  // Says how many bytes at the start were written, as far as the caller knows. This only affects
  // speed.
  void NoteUsed(std::uint32_t bytes) { used_ = bytes; }

  // The pages behind a block, and how many bytes of them were used when it was last given back.
  struct Memory {
    unsigned char* start = nullptr;
    std::uint32_t last_used = 0;
  };

 private:
  class Store;

  Store& store_;
  Memory memory_;
  std::uint32_t size_;
  std::uint32_t used_ = 0;
};

}  // namespace qv
