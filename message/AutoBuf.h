// A zero-filled byte block of fixed size: the ground under one request or reply.
#pragma once

#include <cstdint>

// One server call owns the block. Its fields are part of the memory that is shared with the
// transport libraries: their order and widths are fixed.
class CAutoBuf {
 public:
  // Allocates `size` bytes of zeros; none for 0. Throws std::bad_alloc.
  explicit CAutoBuf(unsigned int size);
  virtual ~CAutoBuf();
  CAutoBuf(const CAutoBuf&) = delete;
  CAutoBuf& operator=(const CAutoBuf&) = delete;

  // The bytes, owned by this object; null when there are none.
  unsigned char* GetData() const { return data_; }
  std::uint32_t GetSize() const { return size_; }

 private:
  friend struct MessageLayout;

  unsigned char* data_ = nullptr;
  std::uint32_t size_ = 0;
};
