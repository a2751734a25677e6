// From a server's name to where it can be reached.
#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace qv::wire {

// A server as calls name it.
struct Peer {
  std::string server;
  std::uint32_t port = 0;

  bool operator==(const Peer&) const = default;
};

// The peer's addresses in the order in which to try them; none when it has none, or when they were
// not known by `deadline`.
[[nodiscard]] std::vector<boost::asio::ip::tcp::endpoint> Resolve(
    const Peer& peer, std::chrono::steady_clock::time_point deadline);

}  // namespace qv::wire
