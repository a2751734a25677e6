// Frames as single texts, for tests.
#pragma once

#include <string>
#include <string_view>

#include "Fields.h"
#include "transports/frame/FrameIo.h"

namespace qv {

wire::Bytes BytesOfText(std::string_view text);

// The bytes to read, and those that were written.
struct MemoryStream final : wire::ByteStream {
  bool Read(wire::WritableBytes bytes) override;
  bool Write(std::initializer_list<wire::Bytes> pieces) override;

  std::string unread;
  std::string written;
};

struct WholeFrame {
  wire::FrameStatus status = wire::FrameStatus::kDone;
  wire::FrameKind kind = wire::FrameKind::kRequest;
  std::string token = {};
  std::string block = std::string(wire::kFrameBlockSize, '\0');
  std::string payload = {};
  std::uint32_t number = 0;
};

// A file of the frame is stored as `path`. Hellos and progress frames are a header alone.
WholeFrame ReceiveWhole(wire::ByteStream& stream, wire::FrameKinds expected,
                        const std::string& path = "");
WholeFrame ReceiveWhole(wire::ByteStream& stream, wire::FrameKind expected,
                        const std::string& path = "");
wire::FrameStatus SendWhole(wire::ByteStream& stream, wire::FrameKind kind, const WholeFrame& frame,
                            wire::OutgoingFile* file = nullptr);

// Returns the bytes of a valid reply with a file of 200,000 bytes.
std::string ReplyWithFile();
std::string HeaderOnly(wire::FrameKind kind, std::uint64_t payload_length);
std::string Damaged(std::string bytes, std::size_t at);

}  // namespace qv
