#include "FieldWriter.h"

#include "message/LittleEndian.h"

namespace qv::standin {

void FieldWriter::Append(const void* body, std::size_t length) {
  const std::size_t start = payload_.size();
  payload_.resize(start + sizeof(std::uint32_t) + length + 1);
  StoreU32(&payload_[start], static_cast<std::uint32_t>(length));
  if (length != 0) std::memcpy(&payload_[start + sizeof(std::uint32_t)], body, length);
}

}  // namespace qv::standin
