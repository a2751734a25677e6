// A block of bytes that a call fills for its caller.
#pragma once

#include "qvnetcall/Export.h"

// Owns its bytes. Hosts rely on the order and the widths of the fields. One thread at a time may
// use an object.
class QVNETCALL_API CQvRvoBuf {
 public:
  CQvRvoBuf() = default;
  ~CQvRvoBuf() { Release(); }
  CQvRvoBuf(const CQvRvoBuf&) = delete;
  CQvRvoBuf& operator=(const CQvRvoBuf&) = delete;

  // Releases the bytes that the object holds and allocates `size` new bytes, all of them zero.
  // Returns 1. Returns 0 and leaves the buffer empty if `size` is below 1 or memory runs out.
  int Alloc(int size);

  unsigned int m_size = 0;           // bytes; 0 while the buffer is empty
  unsigned char* m_bytes = nullptr;  // null while the buffer is empty

 private:
  void Release();
};
