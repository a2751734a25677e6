#include "AutoBuf.h"

CAutoBuf::CAutoBuf(unsigned int size) {
  if (size == 0) return;
  data_ = new unsigned char[size]();
  size_ = size;
}

CAutoBuf::~CAutoBuf() {
  delete[] data_;
  data_ = nullptr;
}
