#include "Resolve.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <future>
#include <thread>
#include <utility>

namespace qv::wire {

namespace {

using boost::asio::ip::tcp;
using Endpoints = std::vector<tcp::endpoint>;

Endpoints LookUp(const Peer& peer) {
  boost::asio::io_context context;
  boost::system::error_code error;
  tcp::resolver resolver(context);
  const auto found = resolver.resolve(peer.server, std::to_string(peer.port),
                                      tcp::resolver::numeric_service, error);
  return {found.begin(), found.end()};
}

}  // namespace

Endpoints Resolve(const Peer& peer, std::chrono::steady_clock::time_point deadline) {
  if (peer.server.empty() || peer.port == 0 || peer.port > 0xFFFF) return {};
  boost::system::error_code not_numeric;
  const auto address = boost::asio::ip::make_address(peer.server, not_numeric);
  if (!not_numeric) return {{address, static_cast<std::uint16_t>(peer.port)}};
  // The system's lookup cannot be interrupted, so it gets a thread that can be left behind.
  std::packaged_task<Endpoints()> lookup([peer] { return LookUp(peer); });
  std::future<Endpoints> found = lookup.get_future();
  std::thread(std::move(lookup)).detach();
  if (found.wait_until(deadline) != std::future_status::ready) return {};
  return found.get();
}

}  // namespace qv::wire
