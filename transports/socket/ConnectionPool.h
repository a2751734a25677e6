// Connections that wait for the next call.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "Connection.h"

namespace qv {

// A call has a connection to itself while it lasts, so there are as many to a server as threads
// call it at once; between calls they lie here, a bounded number of them. Any thread may use the
// pool at any time.
class ConnectionPool {
 public:
  // The connection to `peer` that was used last and is still in order; null when there is none.
  [[nodiscard]] std::unique_ptr<Connection> Take(const Peer& peer);
  // Keeps a connection whose exchange is over. `generation` is what Generation() gave before the
  // exchange: a connection from before the last Clear is closed.
  void Give(std::unique_ptr<Connection> connection, std::uint64_t generation);
  [[nodiscard]] std::uint64_t Generation() const;
  // Closes all that lie here, and has those that are lent closed when they come back.
  void Clear();

 private:
  struct Idle {
    std::unique_ptr<Connection> connection;
    std::chrono::steady_clock::time_point since;
  };

  // Takes the last entry for `peer` out.
  Idle Remove(const Peer& peer);

  mutable std::mutex mutex_;
  std::vector<Idle> idle_;
  std::uint64_t generation_ = 0;
};

}  // namespace qv
