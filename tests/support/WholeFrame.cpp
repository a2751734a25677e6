#include "WholeFrame.h"

#include <algorithm>

#include "TempFolder.h"

namespace qv {

wire::Bytes BytesOfText(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

bool MemoryStream::Read(wire::WritableBytes bytes) {
  if (bytes.size() > unread.size()) return false;
  std::copy_n(unread.begin(), bytes.size(), bytes.begin());
  unread.erase(0, bytes.size());
  return true;
}

bool MemoryStream::Write(std::initializer_list<wire::Bytes> pieces) {
  for (const wire::Bytes piece : pieces) written.append(piece.begin(), piece.end());
  return true;
}

WholeFrame ReceiveWhole(wire::ByteStream& stream, wire::FrameKind expected,
                        const std::string& path) {
  return ReceiveWhole(stream, wire::FrameKinds(&expected, 1), path);
}

WholeFrame ReceiveWhole(wire::ByteStream& stream, wire::FrameKinds expected,
                        const std::string& path) {
  wire::FrameHeader header;
  WholeFrame frame{.status = wire::ReceiveHeader(stream, expected, {}, header)};
  if (frame.status != wire::FrameStatus::kDone) return frame;
  frame.kind = header.kind;
  frame.number = header.number;
  if (frame.kind == wire::FrameKind::kHello || frame.kind == wire::FrameKind::kHello3 ||
      frame.kind == wire::FrameKind::kProgress) {
    return frame;
  }
  const auto room = [](std::string& text, std::uint64_t size) {
    text.resize(static_cast<std::size_t>(size));
    return wire::WritableBytes(reinterpret_cast<unsigned char*>(text.data()), text.size());
  };
  frame.status =
      wire::ReceiveMessage(stream, {.token = room(frame.token, header.token_length),
                                    .block = room(frame.block, wire::kFrameBlockSize),
                                    .payload = room(frame.payload, header.payload_length)});
  if (frame.status != wire::FrameStatus::kDone || !header.file_length) return frame;
  frame.status = wire::ReceiveFile(stream, *header.file_length, path);
  return frame;
}

wire::FrameStatus SendWhole(wire::ByteStream& stream, wire::FrameKind kind, const WholeFrame& frame,
                            wire::OutgoingFile* file) {
  const wire::OutgoingMessage message{.kind = kind,
                                      .token = BytesOfText(frame.token),
                                      .block = BytesOfText(frame.block),
                                      .payload = BytesOfText(frame.payload),
                                      .number = frame.number};
  return wire::SendFrame(stream, message, file);
}

std::string ReplyWithFile() {
  const TempFolder folder;
  auto file = wire::OutgoingFile::Open(folder.Write("source", std::string(200'000, 'f')));
  MemoryStream stream;
  static_cast<void>(
      SendWhole(stream, wire::FrameKind::kReply, {.payload = Field("SUCCESS")}, &*file));
  return stream.written;
}

std::string HeaderOnly(wire::FrameKind kind, std::uint64_t payload_length) {
  const auto bytes = wire::EncodeHeader(
      {.kind = kind, .token_length = 0, .payload_length = payload_length, .file_length = {}});
  return {bytes.begin(), bytes.end()};
}

std::string Damaged(std::string bytes, std::size_t at) {
  bytes[at] = static_cast<char>(bytes[at] ^ 1);
  return bytes;
}

}  // namespace qv
