#include "NetworkHealth.h"

namespace qv::wire {

using Clock = std::chrono::steady_clock;

void NetworkHealth::Delivered() {
  if (is_bad_) Declare(false);
}

void NetworkHealth::NotDelivered(const Peer& peer, const CallError& error) {
  const bool is_down = error.error_class == error::kCannotConnect ||
                       error.error_class == error::kConnectionLost ||
                       error.error_class == error::kNoProgress;
  if (!is_down) return;
  const std::lock_guard lock(mutex_);
  peer_ = peer;
  Become(true);
}

void NetworkHealth::Declare(bool bad) {
  const std::lock_guard lock(mutex_);
  Become(bad);
}

void NetworkHealth::Remember(const Peer& peer) {
  const std::lock_guard lock(mutex_);
  if (peer_ != peer) peer_ = peer;
}

std::optional<NetworkHealth::Probe> NetworkHealth::ClaimProbe(
    std::chrono::milliseconds retry_after) {
  const std::lock_guard lock(mutex_);
  const Clock::time_point now = Clock::now();
  if (!is_bad_ || peer_.server.empty() || now - last_attempt_ < retry_after) return std::nullopt;
  last_attempt_ = now;
  return Probe{peer_, change_};
}

void NetworkHealth::ProbeSucceeded(const Probe& probe) {
  const std::lock_guard lock(mutex_);
  if (change_ == probe.change) Become(false);
}

void NetworkHealth::Become(bool bad) {
  is_bad_ = bad;
  ++change_;
  last_attempt_ = Clock::now();
}

}  // namespace qv::wire
