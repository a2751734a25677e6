// Opens connections: connects, says hello, and finds out which version the server speaks.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <vector>

#include "SocketConnection.h"

namespace qv::wire {

// The servers that answered a hello by closing the connection in order, so that they are spoken to
// in an older version. Each is forgotten after a while, because servers are replaced. Thread-safe.
class OldServers {
 public:
  [[nodiscard]] bool Has(const Peer& peer) const;
  // Does nothing if the server is remembered already.
  void Add(const Peer& peer);
  void Forget(const Peer& peer);
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t kMost = 64;
  static constexpr std::chrono::minutes kRemembered{5};

  struct Entry {
    Peer peer;
    Clock::time_point since;
  };

  mutable std::mutex mutex_;
  std::vector<Entry> entries_;
};

// Opens one connection; use it once.
class Connector {
 public:
  // The arguments must outlive this object. `hello` is kHello, or kHello3 for numbered requests;
  // `old_servers` are those that do not know it.
  Connector(OldServers& old_servers, const Peer& peer, std::chrono::milliseconds timeout,
            const CancelQuestion& cancel, FrameKind hello = FrameKind::kHello)
      : hello_(hello),
        old_servers_(old_servers),
        peer_(peer),
        timeout_(timeout),
        patience_{SocketConnection::Clock::now() + timeout, cancel} {}

  // Returns a connection that is ready for a request. Returns null and sets `error` if there is
  // none within the timeout: kCannotConnect, kBusy (after a second try) or kCancelled. No byte of a
  // request was sent then. After kHello3, the error is none if the server does not know it.
  [[nodiscard]] std::unique_ptr<SocketConnection> Open(CallError& error);

 private:
  enum class Greeting { kDone, kOld, kBusy, kFailed };

  [[nodiscard]] std::unique_ptr<SocketConnection> Connect(CallError& error);
  // Connects and says hello, unless the server is known to be old.
  [[nodiscard]] Greeting TryOnce(std::unique_ptr<SocketConnection>& connection, CallError& error);
  [[nodiscard]] Greeting SayHello(SocketConnection& connection, CallError& error) const;
  // The error of a hello whose answer was received with this status.
  [[nodiscard]] CallError HelloFailed(const SocketConnection& connection, FrameStatus status) const;
  [[nodiscard]] CallError Failed(const std::string& why) const;

  const FrameKind hello_;
  OldServers& old_servers_;
  const Peer& peer_;
  const std::chrono::milliseconds timeout_;
  const SocketConnection::Patience patience_;
};

}  // namespace qv::wire
