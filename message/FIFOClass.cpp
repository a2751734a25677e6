#include "FIFOClass.h"

#include <cstring>

#include "LittleEndian.h"

namespace {

constexpr std::uint32_t kLengthWord = 4;

}  // namespace

void CFIFOClass::Attach(unsigned char* area, std::uint32_t capacity) {
  data_ = area;
  capacity_ = capacity;
  read_position_ = 0;
  write_position_ = 0;
}

void CFIFOClass::Detach() {
  data_ = nullptr;
  capacity_ = 0;
  read_position_ = 0;
  write_position_ = 0;
}

AppendResult CFIFOClass::Append(const void* body, std::uint32_t length) {
  if (IsDetached()) return AppendResult::kDetached;
  if (!IsValid() || body == nullptr || length == 0) return AppendResult::kFailed;
  const std::uint64_t end = std::uint64_t{write_position_} + length + kFieldOverhead;
  if (capacity_ <= end) return AppendResult::kDoesNotFit;
  unsigned char* const field = data_ + write_position_;
  qv::StoreU32(field, length);
  // The zero byte after the body has been there since the area was attached.
  std::memcpy(field + kLengthWord, body, length);
  write_position_ = static_cast<std::uint32_t>(end);
  return AppendResult::kDone;
}

bool CFIFOClass::Peek(Field& field) const {
  if (!IsValid() || read_position_ >= write_position_) return false;
  const std::uint64_t start = std::uint64_t{read_position_} + kLengthWord;
  if (start > capacity_) return false;
  const std::uint32_t length = qv::LoadU32(data_ + read_position_);
  // The agreed test compares with the write position and allows too much by the overhead; the
  // second test keeps the field in the area.
  if (std::uint64_t{read_position_} + length >= write_position_) return false;
  if (start + length + 1 > capacity_) return false;
  field = {data_ + start, length};
  return true;
}

void CFIFOClass::Consume(const Field& field, bool wipe_length) {
  if (wipe_length) qv::StoreU32(data_ + read_position_, 0);
  std::memset(field.body, 0, field.length);
  read_position_ += field.length + kFieldOverhead;
}
