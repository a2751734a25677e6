#include "MsgContentBase.h"

#include <cstring>
#include <exception>
#include <limits>
#include <new>

namespace {

constexpr std::uint32_t kOverflowGrowBytes = 4096;

}  // namespace

CMsgContentBase::CMsgContentBase(const ZeroBlock& block) : overflow_(kOverflowGrowBytes) {
  if (block.data == nullptr || block.size < MessageBlock::kMinimumSize) return;
  block_ = block.data;
  block_size_ = block.size;
  command_ = block_ + MessageBlock::kCommand;
  word1_ = block_ + MessageBlock::kWord1;
  word2_ = block_ + MessageBlock::kWord2;
  byte_ = block_ + MessageBlock::kByte;
  name_ = block_ + MessageBlock::kName;
  payload_ = block_ + MessageBlock::kPayload;
  queue_.Attach(payload_, block_size_ - MessageBlock::kPayload);
}

CMsgContentBase::CMsgContentBase(CAutoBuf& buf)
    : CMsgContentBase(ZeroBlock{buf.GetData(), buf.GetSize()}) {
  if (IsBound()) std::memset(block_, 0, block_size_);
}

CMsgContentBase::~CMsgContentBase() {
  try {
    overflow_.Close();
  } catch (const std::exception&) {
    // If the store fails to close, it is abandoned with the message.
  }
  queue_.Detach();
}

int CMsgContentBase::AppendField(const void* body, std::uint32_t length) noexcept {
  switch (queue_.Append(body, length)) {
    case AppendResult::kDone:
      return 0;
    case AppendResult::kDoesNotFit:
      break;
    case AppendResult::kFailed:
    case AppendResult::kDetached:  // a field that spills is the last one
      return -1;
  }
  try {
    Spill(body, length);
    return 0;
  } catch (const std::exception&) {
    // Smaller fields after the missing one must not make the message look complete.
    queue_.Detach();
    return -1;
  }
}

void CMsgContentBase::Spill(const void* body, std::uint32_t length) {
  const std::uint32_t unread = queue_.WritePosition() - queue_.ReadPosition();
  if (overflow_.GetLength() == 0) {
    const std::uint64_t wanted =
        std::uint64_t{MessageBlock::kSpillPrefix} + unread + length + CFIFOClass::kFieldOverhead;
    if (wanted > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    // Allocates everything at once, so that the store holds the whole payload or nothing.
    overflow_.GrowFile(static_cast<std::uint32_t>(wanted));
    overflow_.SetLength(MessageBlock::kSpillPrefix);
  }
  overflow_.SeekToEnd();
  overflow_.WriteBytes(queue_.Area() + queue_.ReadPosition(), unread);
  queue_.Detach();
  constexpr unsigned char kTerminator = 0;
  overflow_.Write(&length, sizeof length);
  overflow_.WriteBytes(body, length);
  overflow_.Write(&kTerminator, sizeof kTerminator);
}
