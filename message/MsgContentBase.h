// The memory of a message: the caller's block, the queue over its payload, and the store for a
// payload that does not fit.
#pragma once

#include <cstdint>

#include "AutoBuf.h"
#include "FIFOClass.h"
#include "QvMemFile.h"

// Offsets and widths inside a message's block, in bytes.
struct MessageBlock {
  static constexpr std::uint32_t kCommand = 0;
  static constexpr std::uint32_t kWord1 = 4;
  static constexpr std::uint32_t kWord2 = 8;
  static constexpr std::uint32_t kByte = 12;
  static constexpr std::uint32_t kName = 13;
  static constexpr std::uint32_t kNameSize = 256;
  static constexpr std::uint32_t kPayload = kName + kNameSize;
  static constexpr std::uint32_t kMinimumSize = kPayload + 1;
  // A spilled message's store starts with ten bytes that the transport may use, followed by an
  // image of the header.
  static constexpr std::uint32_t kSpillPrefix = 10 + kPayload;
};

// Field order and widths are shared with the transport libraries, which read and write them
// directly.
class CMsgContentBase {
 public:
  virtual ~CMsgContentBase();
  CMsgContentBase(const CMsgContentBase&) = delete;
  CMsgContentBase& operator=(const CMsgContentBase&) = delete;

  // For transports. All pointers point into the caller's block and are null while the message is
  // unbound.
  bool IsBound() const { return block_ != nullptr; }
  unsigned char* Block() const { return block_; }
  std::uint32_t BlockSize() const { return block_size_; }
  // The bytes at the start of the block in which the message and its transport have written, as far
  // as the message knows: a transport of others may have written anywhere.
  std::uint32_t UsedBytes() const { return MessageBlock::kPayload + queue_.WritePosition(); }
  CFIFOClass& Queue() { return queue_; }
  const CFIFOClass& Queue() const { return queue_; }
  // Holds the whole payload, after MessageBlock::kSpillPrefix bytes, if its length is not zero.
  const CQvMemFile& OverflowStore() const { return overflow_; }

 protected:
  // Binds to `buf` if it has room for a header and at least one byte of payload.
  explicit CMsgContentBase(CAutoBuf& buf);
  explicit CMsgContentBase(const ZeroBlock& block);

  // Appends one field to the queue. If the queue is full, moves everything to the store; the field
  // is then the last one, whether or not the store could take it. Returns 0 or -1.
  [[nodiscard]] int AppendField(const void* body, std::uint32_t length) noexcept;

  unsigned char* CommandPointer() const { return command_; }
  unsigned char* NamePointer() const { return name_; }

 private:
  friend struct MessageLayout;

  void Spill(const void* body, std::uint32_t length);

  CFIFOClass queue_;
  CQvMemFile overflow_;
  unsigned char* block_ = nullptr;
  std::uint32_t block_size_ = 0;
  unsigned char* command_ = nullptr;
  unsigned char* word1_ = nullptr;
  unsigned char* word2_ = nullptr;
  unsigned char* byte_ = nullptr;
  unsigned char* name_ = nullptr;
  unsigned char* payload_ = nullptr;
};
