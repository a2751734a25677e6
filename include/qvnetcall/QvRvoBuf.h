// A block of bytes that a call fills for its caller.
#pragma once

#include "qvnetcall/Export.h"

// Owns its bytes. Field order and widths are shared with hosts. One thread at a time.
class QVNETCALL_API CQvRvoBuf {
 public:
  CQvRvoBuf() = default;
  ~CQvRvoBuf() { Release(); }
  CQvRvoBuf(const CQvRvoBuf&) = delete;
  CQvRvoBuf& operator=(const CQvRvoBuf&) = delete;

  // Releases what it holds, then allocates `size` bytes, all zero. 1; 0, and empty, for a size
  // below 1 or without memory.
  int Alloc(int size);

  unsigned int m_size = 0;
  unsigned char* m_bytes = nullptr;

 private:
  void Release();
};
