// Connections that wait for the next call.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace qv::wire {

// A call has a connection to itself while it lasts, so there are as many to a server as threads
// call it at once; between calls they lie here, a bounded number of them, whatever thread made
// them, so that one call can close them all. Any thread may use the pool at any time.
//
// A connection tells by Server() where it leads to, and by IsQuiet() whether it lies idle as it
// should: not closed by the server, and nothing unread.
template <class Connection>
class IdlePool {
 public:
  IdlePool() { idle_.reserve(kMaxIdle); }

  // The connection to `server` that was used last and is still in order; null when there is none.
  template <class Server>
  [[nodiscard]] std::unique_ptr<Connection> Take(const Server& server) {
    for (;;) {
      Idle idle = Remove(server);
      if (!idle.connection) return nullptr;
      const bool is_fresh = Clock::now() - idle.since < kMaxIdleTime;
      if (is_fresh && idle.connection->IsQuiet()) return std::move(idle.connection);
    }
  }

  // Keeps a connection whose exchange is over. `generation` is what Generation() gave before the
  // exchange: a connection from before the last Clear is closed.
  void Give(std::unique_ptr<Connection> connection, std::uint64_t generation) {
    Idle oldest;  // closed outside the lock
    const std::lock_guard lock(mutex_);
    if (generation != generation_) return;
    if (idle_.size() == kMaxIdle) {
      oldest = std::move(idle_.front());
      idle_.erase(idle_.begin());
    }
    idle_.push_back({std::move(connection), Clock::now()});
  }

  [[nodiscard]] std::uint64_t Generation() const {
    const std::lock_guard lock(mutex_);
    return generation_;
  }

  // Closes all that lie here, and has those that are lent closed when they come back.
  void Clear() {
    {
      const std::lock_guard lock(mutex_);
      ++generation_;
    }
    while (RemoveLast()) {
    }
  }

 private:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t kMaxIdle = 16;
  // Something on the way may have forgotten an older connection without telling either side.
  static constexpr std::chrono::seconds kMaxIdleTime{60};

  struct Idle {
    std::unique_ptr<Connection> connection;
    Clock::time_point since;
  };

  // Takes the last entry for `server` out.
  template <class Server>
  Idle Remove(const Server& server) {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(idle_.rbegin(), idle_.rend(), [&](const Idle& one) {
      return one.connection->Server() == server;
    });
    if (found == idle_.rend()) return {};
    Idle idle = std::move(*found);
    idle_.erase(std::next(found).base());
    return idle;
  }

  std::unique_ptr<Connection> RemoveLast() {
    const std::lock_guard lock(mutex_);
    if (idle_.empty()) return nullptr;
    std::unique_ptr<Connection> connection = std::move(idle_.back().connection);
    idle_.pop_back();
    return connection;
  }

  mutable std::mutex mutex_;
  std::vector<Idle> idle_;
  std::uint64_t generation_ = 0;
};

}  // namespace qv::wire
