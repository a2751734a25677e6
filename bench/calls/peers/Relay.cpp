#include "Relay.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <system_error>
#include <utility>

namespace qv::bench {

namespace {

using Clock = std::chrono::steady_clock;

// One direction of a connection: one thread takes what comes, another passes it on when it is due.
class Lane {
 public:
  Lane(const Socket& from, const Socket& to, std::chrono::microseconds delay)
      : from_(from), to_(to), delay_(delay) {
    taking_ = std::thread([this] { Take(); });
    passing_ = std::thread([this] { Pass(); });
  }
  // The sockets must have been shut down.
  ~Lane() {
    taking_.join();
    passing_.join();
  }
  Lane(const Lane&) = delete;
  Lane& operator=(const Lane&) = delete;

  [[nodiscard]] std::size_t Passed() const { return passed_; }

 private:
  struct Piece {
    Clock::time_point due;
    std::vector<char> bytes;  // none at the end of the connection
  };

  void Take() {
    std::array<char, 65536> buffer;
    std::size_t got = 0;
    do {
      try {
        got = from_.Receive(buffer);
      } catch (const std::system_error&) {
        got = 0;  // a broken connection ends as well
      }
      const std::lock_guard lock(mutex_);
      pieces_.push_back({Clock::now() + delay_, {buffer.begin(), buffer.begin() + got}});
      arrived_.notify_one();
    } while (got != 0);
  }

  Piece Next() {
    std::unique_lock lock(mutex_);
    arrived_.wait(lock, [this] { return !pieces_.empty(); });
    Piece piece = std::move(pieces_.front());
    pieces_.pop_front();
    return piece;
  }

  void Pass() {
    for (Piece piece = Next(); !piece.bytes.empty(); piece = Next()) {
      std::this_thread::sleep_until(piece.due);
      passed_ += piece.bytes.size();  // before anybody can have received them
      try {
        to_.Send(piece.bytes);
      } catch (const std::system_error&) {
        break;
      }
    }
    to_.Shutdown();
  }

  const Socket& from_;
  const Socket& to_;
  const std::chrono::microseconds delay_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<Piece> pieces_;
  std::atomic<std::size_t> passed_ = 0;
  std::thread taking_;
  std::thread passing_;
};

}  // namespace

class Relay::Connection {
 public:
  Connection(Socket client, Socket server, std::chrono::microseconds delay)
      : client_(std::move(client)),
        server_(std::move(server)),
        up_(client_, server_, delay),
        down_(server_, client_, delay) {}
  ~Connection() {
    client_.Shutdown();
    server_.Shutdown();
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  [[nodiscard]] Traffic Passed() const { return {up_.Passed(), down_.Passed()}; }

 private:
  const Socket client_;
  const Socket server_;
  Lane up_;
  Lane down_;
};

Relay::Relay(std::uint16_t server_port, std::chrono::microseconds delay)
    : server_port_(server_port), delay_(delay), accepting_([this] { AcceptAll(); }) {}

Relay::~Relay() {
  listener_.Shutdown();
  accepting_.join();
}

Traffic Relay::Passed() const {
  const std::lock_guard lock(mutex_);
  Traffic sum;
  for (const auto& connection : connections_) {
    sum.to_server += connection->Passed().to_server;
    sum.to_client += connection->Passed().to_client;
  }
  return sum;
}

void Relay::AcceptAll() {
  try {
    while (true) {
      Socket client = listener_.Accept();
      auto connection =
          std::make_unique<Connection>(std::move(client), Socket::Connect(server_port_), delay_);
      const std::lock_guard lock(mutex_);
      connections_.push_back(std::move(connection));
    }
  } catch (const std::system_error&) {
    // The relay is being closed, or its server is gone.
  }
}

}  // namespace qv::bench
