#include "WholeFrame.h"

#include <algorithm>

#include "TempFolder.h"

namespace qv {

Bytes BytesOfText(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

bool MemoryStream::Read(WritableBytes bytes) {
  if (bytes.size() > unread.size()) return false;
  std::copy_n(unread.begin(), bytes.size(), bytes.begin());
  unread.erase(0, bytes.size());
  return true;
}

bool MemoryStream::Write(std::initializer_list<Bytes> pieces) {
  for (const Bytes piece : pieces) written.append(piece.begin(), piece.end());
  return true;
}

WholeFrame ReceiveWhole(ByteStream& stream, FrameKind kind, const std::string& path) {
  FrameHeader header;
  WholeFrame frame{.status = ReceiveHeader(stream, kind, {}, header)};
  if (frame.status != FrameStatus::kDone) return frame;
  const auto room = [](std::string& text, std::uint64_t size) {
    text.resize(static_cast<std::size_t>(size));
    return WritableBytes(reinterpret_cast<unsigned char*>(text.data()), text.size());
  };
  frame.status = ReceiveMessage(stream, {.token = room(frame.token, header.token_length),
                                         .block = room(frame.block, kFrameBlockSize),
                                         .payload = room(frame.payload, header.payload_length)});
  if (frame.status != FrameStatus::kDone || !header.file_length) return frame;
  frame.status = ReceiveFile(stream, *header.file_length, path);
  return frame;
}

FrameStatus SendWhole(ByteStream& stream, FrameKind kind, const WholeFrame& frame,
                      OutgoingFile* file) {
  const OutgoingMessage message{.kind = kind,
                                .token = BytesOfText(frame.token),
                                .block = BytesOfText(frame.block),
                                .payload = BytesOfText(frame.payload)};
  return SendFrame(stream, message, file);
}

std::string ReplyWithFile() {
  const TempFolder folder;
  auto file = OutgoingFile::Open(folder.Write("source", std::string(200'000, 'f')));
  MemoryStream stream;
  static_cast<void>(SendWhole(stream, FrameKind::kReply, {.payload = Field("SUCCESS")}, &*file));
  return stream.written;
}

std::string HeaderOnly(FrameKind kind, std::uint64_t payload_length) {
  const auto bytes = EncodeHeader(
      {.kind = kind, .token_length = 0, .payload_length = payload_length, .file_length = {}});
  return {bytes.begin(), bytes.end()};
}

std::string Damaged(std::string bytes, std::size_t at) {
  bytes[at] = static_cast<char>(bytes[at] ^ 1);
  return bytes;
}

}  // namespace qv
