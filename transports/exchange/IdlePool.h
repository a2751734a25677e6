// Idle connections that are kept for the next call.
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

// A call uses a connection exclusively, so a server has as many connections as threads call it at
// once. Between calls a bounded number of them is kept here, whichever thread opened them, so that
// Clear() can close them all. Thread-safe.
//
// Connection::Server() returns the server that it leads to. Connection::IsQuiet() returns whether
// it is still usable: the server has neither closed it nor sent anything that was not read.
template <class Connection>
class IdlePool {
 public:
  IdlePool() { idle_.reserve(kMaxIdle); }

  // Removes and returns the most recently used connection to `server` that is still usable, and
  // that `is_wanted`, or null if there is none.
  template <class Server, class IsWanted>
  [[nodiscard]] std::unique_ptr<Connection> Take(const Server& server, IsWanted is_wanted) {
    for (;;) {
      Idle idle = Remove(server, is_wanted);
      if (!idle.connection) return nullptr;
      const bool is_fresh = Clock::now() - idle.since < kMaxIdleTime;
      if (is_fresh && idle.connection->IsQuiet()) return std::move(idle.connection);
    }
  }

  template <class Server>
  [[nodiscard]] std::unique_ptr<Connection> Take(const Server& server) {
    return Take(server, [](const Connection&) { return true; });
  }

  // Keeps a connection after an exchange. `generation` is the value of Generation() before the
  // exchange; if Clear() was called since, the connection is closed instead.
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

  // Closes all idle connections. Those in use are closed when they are given back.
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
  // A firewall on the way may have dropped an older connection without telling either side.
  static constexpr std::chrono::seconds kMaxIdleTime{60};

  struct Idle {
    std::unique_ptr<Connection> connection;
    Clock::time_point since;
  };

  // Removes and returns the last entry for `server` that `is_wanted`.
  template <class Server, class IsWanted>
  Idle Remove(const Server& server, IsWanted is_wanted) {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(idle_.rbegin(), idle_.rend(), [&](const Idle& one) {
      return one.connection->Server() == server && is_wanted(*one.connection);
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
