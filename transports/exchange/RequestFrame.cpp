#include "RequestFrame.h"

#include <utility>

#include "CallError.h"

namespace qv::wire {

namespace {

Bytes BytesOf(const std::string& text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

}  // namespace

bool HasRoom(CMsgContent& reply) { return reply.IsBound() && reply.Queue().IsValid(); }

std::optional<RequestFrame> RequestFrame::Prepare(const CMsgContent& request, CMsgContent& reply,
                                                  std::string token, CallError& error) {
  if (HasRoom(reply)) return Prepare(request, std::move(token), error);
  error = NoBlock();
  return std::nullopt;
}

std::optional<RequestFrame> RequestFrame::Prepare(const CMsgContent& request, std::string token,
                                                  CallError& error) {
  const std::optional<Bytes> payload = RequestPayload(request);
  if (!request.IsBound() || !payload) {
    error = NoBlock();
    return std::nullopt;
  }
  if (payload->size() > kMaxPayload) {
    error = {error::kLocal, "the request has " + std::to_string(payload->size()) +
                                " bytes of fields, and at most " + std::to_string(kMaxPayload) +
                                " can be sent"};
    return std::nullopt;
  }
  RequestFrame frame(request, *payload, std::move(token));
  if (*request.FileName() != '\0') {
    frame.file_ = OutgoingFile::Open(request.FileName());
    if (!frame.file_) {
      error = {error::kLocal, std::string("cannot read the file ") + request.FileName()};
      return std::nullopt;
    }
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
  return {.kind = number_ ? FrameKind::kNumberedRequest : FrameKind::kRequest,
          .token = BytesOf(token_),
          .block = Bytes(request_->Block(), kFrameBlockSize),
          .payload = payload_,
          .number = number_.value_or(0)};
}

std::optional<Bytes> RequestPayload(const CMsgContent& request) {
  const CQvMemFile& store = request.OverflowStore();
  if (store.Length() != 0) {
    if (store.Bytes() == nullptr || store.Length() < MessageBlock::kSpillPrefix) return {};
    return Bytes(store.Bytes(), store.Length()).subspan(MessageBlock::kSpillPrefix);
  }
  const CFIFOClass& queue = request.Queue();
  if (!queue.IsValid() || queue.ReadPosition() > queue.WritePosition()) return {};
  return Bytes(queue.Area(), queue.WritePosition()).subspan(queue.ReadPosition());
}

}  // namespace qv::wire
