// Frames in one piece, as tests like them.
#pragma once

#include <string>
#include <string_view>

#include "transports/frame/FrameIo.h"

namespace qv {

Bytes BytesOfText(std::string_view text);

// A field as it stands in a payload.
std::string Field(std::string_view body);

// What there is to read, and what was written.
struct MemoryStream final : ByteStream {
  bool Read(WritableBytes bytes) override;
  bool Write(std::initializer_list<Bytes> pieces) override;

  std::string unread;
  std::string written;
};

struct WholeFrame {
  FrameStatus status = FrameStatus::kDone;
  std::string token = {};
  std::string block = std::string(kFrameBlockSize, '\0');
  std::string payload = {};
};

// A file that comes along goes to `path`.
WholeFrame ReceiveWhole(ByteStream& stream, FrameKind kind, const std::string& path = "");
FrameStatus SendWhole(ByteStream& stream, FrameKind kind, const WholeFrame& frame,
                      OutgoingFile* file = nullptr);

}  // namespace qv
