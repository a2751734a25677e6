// A zero-filled byte block of fixed size that holds one request or reply.
#pragma once

#include <cstdint>

// A block that is all zero already, which somebody else owns.
struct ZeroBlock {
  unsigned char* data = nullptr;
  std::uint32_t size = 0;
};

// One server call owns the block. Its fields are in memory that is shared with the transport
// libraries: their order and widths are fixed.
class CAutoBuf {
 public:
  // Allocates `size` zero bytes, or nothing for 0. Throws std::bad_alloc.
  explicit CAutoBuf(unsigned int size);
  virtual ~CAutoBuf();
  CAutoBuf(const CAutoBuf&) = delete;
  CAutoBuf& operator=(const CAutoBuf&) = delete;

  // Returns the bytes, which this object owns, or null if there are none.
  unsigned char* GetData() const { return data_; }
  std::uint32_t GetSize() const { return size_; }

 private:
  friend struct MessageLayout;

  unsigned char* data_ = nullptr;
  std::uint32_t size_ = 0;
};
