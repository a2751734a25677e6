// Where the fields of a request stand.
#pragma once

#include <optional>

#include "message/MsgContent.h"
#include "transports/frame/Frame.h"

namespace qv::wire {

// The fields that were appended and not read yet: in the block, or in the overflow store of a
// message that spilled. They stay the message's. Nothing when there is no area to look at.
[[nodiscard]] std::optional<Bytes> RequestPayload(const CMsgContent& request);

}  // namespace qv::wire
