#include "MsgContent.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <limits>

#include "LittleEndian.h"

namespace {

constexpr std::size_t kMaxPath = 1024;
// The identifier is in the last four bytes of the name field, after one zero byte.
constexpr std::size_t kIdOffset = 252;
constexpr std::size_t kMaxIdName = kIdOffset - 1;
constexpr std::size_t kMaxName = MessageBlock::kNameSize - 1;

// Runs `operation` unless the slot holds an error, and stores its result there. Any exception, of a
// file or for lack of memory, becomes the failure -1.
template <class Operation>
int WithSlot(int* err, Operation operation) {
  if (err != nullptr && *err != 0) return *err;
  int result = -1;
  try {
    result = operation();
  } catch (const std::exception&) {
    // the result is -1 already
  }
  if (err != nullptr) *err = result;
  return result;
}

}  // namespace

CMsgContent::CMsgContent(CAutoBuf& buf)
    : CMsgContentBase(buf), file_name_(new char[kMaxPath + 1]()) {}

CMsgContent::CMsgContent(const ZeroBlock& block)
    : CMsgContentBase(block), file_name_(new char[kMaxPath + 1]()) {}

CMsgContent::~CMsgContent() { delete[] file_name_; }

int CMsgContent::SetCommand(unsigned int code) {
  if (!IsBound()) return -1;
  qv::StoreU32(CommandPointer(), code);
  return 0;
}

int CMsgContent::AddString(const char* text, int* err) {
  return WithSlot(err, [&] {
    const std::size_t length = text != nullptr ? std::strlen(text) : 0;
    if (length > std::numeric_limits<std::uint32_t>::max()) return -1;
    return AppendField(text, static_cast<std::uint32_t>(length));
  });
}

int CMsgContent::AddData(const void* data, unsigned int length, int* err) {
  return WithSlot(err, [&] {
    const bool above_zero = static_cast<std::int32_t>(length) > 0;
    return AppendField(data, above_zero ? length : 0);
  });
}

int CMsgContent::GetString(CString& out, int* err) {
  return WithSlot(err, [&] {
    CFIFOClass::Field field;
    if (!Queue().Peek(field) || field.length == 0) return -1;
    const bool has_zero = std::memchr(field.body, 0, field.length) != nullptr;
    if (has_zero || field.body[field.length] != 0) return -1;
    out = reinterpret_cast<const char*>(field.body);
    Queue().Consume(field, /*wipe_length=*/true);
    return 0;
  });
}

CString CMsgContent::GetString(int* err) {
  CString text;
  GetString(text, err);
  return text;
}

int CMsgContent::GetData(void* out, unsigned int length, int* err) {
  return WithSlot(err, [&] {
    CFIFOClass::Field field;
    if (out == nullptr || length == 0) return -1;
    if (!Queue().Peek(field) || field.length != length) return -1;
    std::memcpy(out, field.body, length);
    Queue().Consume(field, /*wipe_length=*/false);
    return 0;
  });
}

int CMsgContent::GetFile(CFile& file, int* err) {
  return WithSlot(err, [&] {
    CFIFOClass::Field field;
    if (!Queue().Peek(field) || field.length == 0) return -1;
    file.Write(field.body, field.length);
    Queue().Consume(field, /*wipe_length=*/false);
    return 0;
  });
}

int CMsgContent::SetMsgFlag(unsigned char on) {
  msg_flag_ = on;
  return 0;
}

int CMsgContent::WriteName(const char* name, std::size_t limit) {
  if (!IsBound() || name == nullptr) return -1;
  std::memset(NamePointer(), 0, MessageBlock::kNameSize);
  std::memcpy(NamePointer(), name, std::min(std::strlen(name), limit));
  return 0;
}

int CMsgContent::SetName(const char* name) { return WriteName(name, kMaxName); }

int CMsgContent::SetIdName(const char* name, int id) {
  if (id < 0 || WriteName(name, kMaxIdName) != 0) return -1;
  qv::StoreU32(NamePointer() + kIdOffset, static_cast<std::uint32_t>(id));
  return 0;
}

int CMsgContent::SetFileName(const char* path, unsigned char file_flag) {
  if (file_name_ == nullptr || path == nullptr) return -1;
  std::memset(file_name_, 0, kMaxPath + 1);
  std::memcpy(file_name_, path, std::min(std::strlen(path), kMaxPath));
  file_flag_ = file_flag;
  return 0;
}
