// A relay between clients and a server on this machine, which may make the way between them long.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "Sockets.h"

namespace qv::bench {

struct Traffic {
  std::size_t to_server = 0;  // bytes
  std::size_t to_client = 0;
};

// Passes on whatever comes, each byte `delay` after it came, and never holds up what follows.
class Relay {
 public:
  Relay(std::uint16_t server_port, std::chrono::microseconds delay);
  ~Relay();
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  [[nodiscard]] std::uint16_t Port() const { return listener_.Port(); }
  // What has been passed on so far.
  [[nodiscard]] Traffic Passed() const;

 private:
  class Connection;

  void AcceptAll();

  const std::uint16_t server_port_;
  const std::chrono::microseconds delay_;
  const Socket listener_ = Socket::Listen();
  mutable std::mutex mutex_;  // guards the connections
  std::vector<std::unique_ptr<Connection>> connections_;
  std::thread accepting_;
};

}  // namespace qv::bench
