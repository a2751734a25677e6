// Whether the network is taken to be bad, so that the host works offline for a while.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

#include "SocketConnection.h"

namespace qv::wire {

// Any thread may use it at any time.
class NetworkHealth {
 public:
  [[nodiscard]] bool IsBad() const { return is_bad_; }
  // A message was delivered.
  void Delivered();
  void ConnectFailed(const Peer& peer);
  void Declare(bool bad);
  // Names the server that a probe would go to.
  void Remember(const Peer& peer);

  // The right to try one probe of a bad network.
  struct Probe {
    Peer peer;
    std::uint64_t change;
  };
  // Gives it at most once in `retry_after`, counted from when the network became bad or was probed
  // last; nothing as well while the network is good or no server is known.
  [[nodiscard]] std::optional<Probe> ClaimProbe(std::chrono::milliseconds retry_after);
  // The probe found the server. What was learned since it was claimed counts for more.
  void ProbeSucceeded(const Probe& probe);

 private:
  void Become(bool bad);

  std::atomic<bool> is_bad_{false};
  std::mutex mutex_;
  Peer peer_;
  std::chrono::steady_clock::time_point last_attempt_;
  // Counts what was said about the network.
  std::uint64_t change_ = 0;
};

}  // namespace qv::wire
