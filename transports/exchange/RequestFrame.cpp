#include "RequestFrame.h"

#include <utility>

#include "RequestPayload.h"

namespace qv::wire {

namespace {

Bytes BytesOf(const std::string& text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

bool HasRoom(CMsgContent& reply) { return reply.IsBound() && reply.Queue().IsValid(); }

}  // namespace

std::optional<RequestFrame> RequestFrame::Prepare(const CMsgContent& request, CMsgContent& reply,
                                                  std::string token) {
  const std::optional<Bytes> payload = RequestPayload(request);
  if (!request.IsBound() || !payload || !HasRoom(reply)) return std::nullopt;
  if (payload->size() > kMaxPayload) return std::nullopt;
  RequestFrame frame(request, *payload, std::move(token));
  if (*request.FileName() != '\0') {
    frame.file_ = OutgoingFile::Open(request.FileName());
    if (!frame.file_) return std::nullopt;
  }
  return frame;
}

std::uint64_t RequestFrame::Length() const {
  return FrameLength(Message(), file_ ? &*file_ : nullptr);
}

FrameStatus RequestFrame::Send(ByteStream& stream, const FileProgress& progress) {
  return SendFrame(stream, Message(), file_ ? &*file_ : nullptr, progress);
}

OutgoingMessage RequestFrame::Message() const {
  return {.kind = FrameKind::kRequest,
          .token = BytesOf(token_),
          .block = Bytes(request_->Block(), kFrameBlockSize),
          .payload = payload_};
}

}  // namespace qv::wire
