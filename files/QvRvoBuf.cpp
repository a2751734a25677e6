#include "qvnetcall/QvRvoBuf.h"

#include <cstddef>
#include <new>

static_assert(offsetof(CQvRvoBuf, m_size) == 0 && offsetof(CQvRvoBuf, m_bytes) == sizeof(void*));

int CQvRvoBuf::Alloc(int size) {
  Release();
  if (size < 1) return 0;
  m_bytes = new (std::nothrow) unsigned char[static_cast<unsigned>(size)]();
  if (m_bytes == nullptr) return 0;
  m_size = static_cast<unsigned>(size);
  return 1;
}

void CQvRvoBuf::Release() {
  delete[] m_bytes;
  m_bytes = nullptr;
  m_size = 0;
}
