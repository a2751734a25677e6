#include "ConnectionPool.h"

#include <algorithm>
#include <utility>

namespace qv {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMaxIdle = 16;
// Something on the way may have forgotten an older connection without telling either side.
constexpr std::chrono::seconds kMaxIdleTime{60};

}  // namespace

std::unique_ptr<Connection> ConnectionPool::Take(const Peer& peer) {
  for (;;) {
    Idle idle = Remove(peer);
    if (!idle.connection) return nullptr;
    const bool is_fresh = Clock::now() - idle.since < kMaxIdleTime;
    if (is_fresh && idle.connection->IsQuiet()) return std::move(idle.connection);
  }
}

ConnectionPool::Idle ConnectionPool::Remove(const Peer& peer) {
  const std::lock_guard lock(mutex_);
  const auto found = std::find_if(idle_.rbegin(), idle_.rend(), [&](const Idle& one) {
    return one.connection->Server() == peer;
  });
  if (found == idle_.rend()) return {};
  Idle idle = std::move(*found);
  idle_.erase(std::next(found).base());
  return idle;
}

void ConnectionPool::Give(std::unique_ptr<Connection> connection, std::uint64_t generation) {
  Idle oldest;  // closed outside the lock
  const std::lock_guard lock(mutex_);
  if (generation != generation_) return;
  if (idle_.size() == kMaxIdle) {
    oldest = std::move(idle_.front());
    idle_.erase(idle_.begin());
  }
  idle_.push_back({std::move(connection), Clock::now()});
}

std::uint64_t ConnectionPool::Generation() const {
  const std::lock_guard lock(mutex_);
  return generation_;
}

void ConnectionPool::Clear() {
  std::vector<Idle> closed;
  const std::lock_guard lock(mutex_);
  ++generation_;
  closed.swap(idle_);
}

}  // namespace qv
