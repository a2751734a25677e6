#include "RequestPayload.h"

namespace qv::wire {

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
