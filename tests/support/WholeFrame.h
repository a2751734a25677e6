// Frames in one piece, as tests like them.
#pragma once

#include <string>
#include <string_view>

#include "Fields.h"
#include "transports/frame/FrameIo.h"

namespace qv {

Bytes BytesOfText(std::string_view text);

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

// The bytes of a right reply with a file of 200,000 bytes.
std::string ReplyWithFile();
std::string HeaderOnly(FrameKind kind, std::uint64_t payload_length);
std::string Damaged(std::string bytes, std::size_t at);

}  // namespace qv
