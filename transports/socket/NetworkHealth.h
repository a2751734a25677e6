// Whether the network counts as bad, so that the host works offline for a while.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

#include "SocketConnection.h"

namespace qv::wire {

// Thread-safe.
class NetworkHealth {
 public:
  [[nodiscard]] bool IsBad() const { return is_bad_; }
  // Reports that a message was delivered.
  void Delivered();
  // Reports that nothing of a call was delivered, for this reason.
  void NotDelivered(const Peer& peer, const CallError& error);
  void Declare(bool bad);
  // Sets the server that a probe would go to.
  void Remember(const Peer& peer);

  // Permission to probe a bad network once.
  struct Probe {
    Peer peer;
    std::uint64_t change;
  };
  // Grants a probe at most once per `retry_after`, counted from the moment when the network became
  // bad or was last probed. Returns nothing in between, and while the network is good or no server
  // is known.
  [[nodiscard]] std::optional<Probe> ClaimProbe(std::chrono::milliseconds retry_after);
  // Reports that the probe reached the server. Ignored if anything was reported since the probe was
  // claimed.
  void ProbeSucceeded(const Probe& probe);

 private:
  void Become(bool bad);

  std::atomic<bool> is_bad_{false};
  std::mutex mutex_;
  Peer peer_;
  std::chrono::steady_clock::time_point last_attempt_;
  // Incremented by every report about the network.
  std::uint64_t change_ = 0;
};

}  // namespace qv::wire
