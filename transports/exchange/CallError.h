// The errors that the transports find themselves, in the same words for both.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "ThreadCall.h"
#include "transports/frame/Reason.h"

namespace qv::wire {

// Where a call goes, as texts name it: "files.example:4000", "[::1]:4000".
[[nodiscard]] std::string NameOf(std::string_view server, std::uint32_t port);

// "cannot connect to h:4000 within 5 s: connection refused"
[[nodiscard]] CallError CannotConnect(std::string_view peer, std::chrono::milliseconds within,
                                      std::string_view why);
// "no progress for 30 s"
[[nodiscard]] CallError NoProgress(std::chrono::milliseconds patience);
// "the connection to h:4000 was lost: connection reset by peer"
[[nodiscard]] CallError ConnectionLost(std::string_view peer, std::string_view why);
[[nodiscard]] CallError Cancelled();
// A message without a block that can be used.
[[nodiscard]] CallError NoBlock();
// `why` is what the server said, or empty.
[[nodiscard]] CallError Busy(const Reason& why);
// An error that the server gave with its reply; none for no reason.
[[nodiscard]] CallError FromServer(const Reason& reason);

// Returns true if the connection of a call that ended so may serve the next one. A server
// disconnects whoever shows a wrong token, a moment after its reply.
[[nodiscard]] bool MayKeepConnection(int result, const CallError& error);

}  // namespace qv::wire
