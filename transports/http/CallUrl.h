// Where the calls to a server go.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qv::wire {

// The address to which frames for a server are posted. `server` is a host name or an address,
// "http://" or "https://" may stand before it; it is https as well when `use_tls` says so. The same
// server has the same text however it is spelt in upper and lower case, so this also tells servers
// apart. Nothing when `server` is more than that (a path, a port, a user), or `port` is none.
[[nodiscard]] std::optional<std::string> CallUrl(std::string_view server, std::uint32_t port,
                                                 bool use_tls);

}  // namespace qv::wire
