// What frames travel over: a connection, as the code that reads and writes frames sees it.
#pragma once

#include <initializer_list>

#include "Frame.h"

namespace qv::wire {

// Blocks for as long as its implementation allows a stretch without progress to last.
class ByteStream {
 public:
  virtual ~ByteStream() = default;

  // Fills `bytes`. False when the connection ended, failed or stood still before that.
  [[nodiscard]] virtual bool Read(WritableBytes bytes) = 0;
  // Writes all of `pieces`, back to back. False likewise.
  [[nodiscard]] virtual bool Write(std::initializer_list<Bytes> pieces) = 0;
  // Called behind the last byte of a frame, and before its file gets its name: whether the frame
  // may end here. kMalformed when what carries it goes on, kConnectionLost when that cannot be
  // told. A connection that carries one frame after the other has nothing to say about it.
  [[nodiscard]] virtual FrameStatus End() { return FrameStatus::kDone; }
};

}  // namespace qv::wire
