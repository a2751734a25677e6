#include "ReceiveReply.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace qv::wire {

namespace {

FrameStatus ReceiveInto(ByteStream& stream, const IncomingMessage& message,
                        const FrameHeader& header, const std::string& path,
                        const ReplyProgress& progress) {
  const FrameStatus status = ReceiveMessage(stream, message);
  if (status != FrameStatus::kDone) return status;
  if (progress.message) progress.message(message.payload.size());
  if (!header.file_length) return stream.End();
  return ReceiveFile(stream, *header.file_length, path, progress.file);
}

}  // namespace

FrameStatus ReceiveReply(ByteStream& stream, CMsgContent& reply, const ReplyProgress& progress) {
  CFIFOClass& queue = reply.Queue();
  const std::string path = reply.FileName();
  FrameHeader header;
  FrameStatus status =
      ReceiveHeader(stream, FrameKind::kReply, {.payload = queue.Capacity()}, header);
  if (status != FrameStatus::kDone) return status;
  if (header.file_length && path.empty()) return FrameStatus::kDoesNotFit;

  // The bytes in the reply's area do not become fields before SetFilled.
  std::array<unsigned char, kFrameBlockSize> block{};
  const WritableBytes payload(queue.Area(), static_cast<std::size_t>(header.payload_length));
  status = ReceiveInto(stream, {.token = {}, .block = block, .payload = payload}, header, path,
                       progress);
  if (status != FrameStatus::kDone) {
    std::fill(payload.begin(), payload.end(), static_cast<unsigned char>(0));
    return status;
  }
  std::memcpy(reply.Block(), block.data(), block.size());
  const bool fits = queue.SetFilled(static_cast<std::uint32_t>(payload.size()));
  return fits ? FrameStatus::kDone : FrameStatus::kDoesNotFit;
}

}  // namespace qv::wire
